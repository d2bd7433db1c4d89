#pragma once

#include "widgets/ui/VextilButton.h"
#include "widgets/ui/VextilImageView.h"
#include "widgets/ui/VextilLabel.h"

#include <QPointer>
#include <QPropertyAnimation>
#include <QWidget>

#include <functional>

/// A pop-up of four illustrated tips in a rounded box over a dark blur of what lies beneath,
/// with one button that fades it out and reports that it is done. Subclasses fill in the tips.
/// The owner sets completionHandler, adds it over a screen and gives it the screen's size.
/// GUI thread only.
class VextilTutorialView : public QWidget {
    Q_OBJECT
public:
    explicit VextilTutorialView(QWidget *parent = nullptr);
    ~VextilTutorialView() override;

    VextilImageView *topLeftIconImageView() const { return m_icons[0]; }
    VextilImageView *topRightIconImageView() const { return m_icons[1]; }
    VextilImageView *bottomLeftIconImageView() const { return m_icons[2]; }
    VextilImageView *bottomRightImageView() const { return m_icons[3]; }
    /// The blurred backdrop; not part of the pop-up when reduced transparency is on.
    QWidget *blurEffectView() const { return m_blur; }
    QWidget *contentView() const { return m_content; }
    VextilLabel *topLeftTipLabel() const { return m_labels[0]; }
    VextilLabel *topRightTipLabel() const { return m_labels[1]; }
    VextilLabel *bottomLeftTipLabel() const { return m_labels[2]; }
    VextilLabel *bottomRightTipLabel() const { return m_labels[3]; }
    VextilButton *nextButton() const { return m_nextButton; }

    /// Called exactly once, after the pop-up has faded out and left its parent.
    void setCompletionHandler(std::function<void()> handler) { m_completionHandler = std::move(handler); }
    /// Shows the pop-up, fading it in to its opacity over `durationMs`.
    void fadeIn(int durationMs);
    /// Fades the pop-up out over 0.25 s, removes it and calls the completion handler; the
    /// next button's action. Only the first call counts; a fade-in still running is cut short,
    /// and a fade-out that is interrupted still closes the pop-up.
    void didTappedNextButton();

    /// Opacity of the whole pop-up (0.75 with reduced transparency).
    qreal alpha() const;

    static constexpr int kFadeMs = 250;
    /// The box's size on a phone held upright; it shrinks to fit smaller screens.
    static constexpr double kBoxWidth = 288, kBoxHeight = 454;

protected:
    void addBlurEffectView();
    void addViews();
    void updateConstraints();
    void resizeEvent(QResizeEvent *) override;
    void showEvent(QShowEvent *) override;
    void paintEvent(QPaintEvent *) override;

private:
    static constexpr double kMargin = 12;
    static constexpr int kTipFontPx = 10, kButtonFontPx = 19;

    double boxScale() const;
    static QFont scaledFont(QFont font, int pixels, double scale);
    void scaleFonts(double scale);
    void finishClosing();

    QWidget *m_blur = nullptr;
    QWidget *m_content = nullptr;
    VextilImageView *m_icons[4] = {};
    VextilLabel *m_labels[4] = {};
    VextilButton *m_nextButton = nullptr;
    std::function<void()> m_completionHandler;
    bool m_reduceTransparency = false;
    bool m_closing = false;
    bool m_closed = false;
    QPointer<QPropertyAnimation> m_fadeIn, m_fadeOut;
};
