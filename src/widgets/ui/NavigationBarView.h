#pragma once

#include "widgets/ui/VextilButton.h"
#include "widgets/ui/VextilLabel.h"

#include <QWidget>

/// The toolkit's top bar: a centred title, a back button at the leading edge and, optionally,
/// a help button at the trailing edge. It attaches no actions; its owner connects the buttons'
/// pressed() signals and sets the tints. GUI thread only.
class NavigationBarView : public QWidget {
    Q_OBJECT
public:
    /// Builds the bar; its owner gives it its geometry.
    NavigationBarView(const QString &title, bool andHelpButton, QWidget *parent = nullptr);

    VextilLabel *titleLabel() const { return m_titleLabel; }
    QString navigationTitle() const { return m_navigationTitle; }
    QString backButtonImage() const { return QStringLiteral("back_icon"); }
    QString helpButtonImage() const { return QStringLiteral("help_icon"); }
    bool showHelpButton() const { return m_showHelpButton; }
    VextilButton *backButton() const { return m_backButton; }
    /// Null when the bar was built without one.
    VextilButton *helpButton() const { return m_helpButton; }

    /// Colour of the title text.
    void setTitleLabelTintColor(const QColor &color);
    /// Colour of the back arrow.
    void setBackButtonTintColor(const QColor &color);
    /// Colour of the help icon; nothing without a help button.
    void setHelpButtonTintColor(const QColor &color);

protected:
    void resizeEvent(QResizeEvent *) override { setupConstraints(); }

private:
    void setupViews();
    void setupConstraints();
    VextilButton *makeIconButton(const QString &image, const QString &accessibleName);

    QString m_navigationTitle;
    bool m_showHelpButton;
    VextilLabel *m_titleLabel = nullptr;
    VextilButton *m_backButton = nullptr;
    VextilButton *m_helpButton = nullptr;
};
