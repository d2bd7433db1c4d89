#pragma once

#include <QLabel>

/// A label that can shrink its font to fit its width before eliding, down to a minimum scale.
class VextilLabel : public QLabel {
    Q_OBJECT
public:
    explicit VextilLabel(QWidget *parent = nullptr);

    /// Shrinks the font to fit the width instead of wrapping.
    void setAdjustsFontSizeToFitWidth(bool adjusts);
    /// The smallest share of the base font size the label shrinks to (0 means no limit).
    void setMinimumScaleFactor(double factor);
    /// The font used when the text fits; the label's font may be smaller.
    void setBaseFont(const QFont &font);
    QFont baseFont() const { return m_baseFont; }
    /// Sets the text, announcing the change to assistive technology.
    void setText(const QString &text);
    /// The whole text, even when it is shown elided.
    QString fullText() const { return m_text; }

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    void fit();
    QString m_text;
    QFont m_baseFont;
    bool m_adjusts = false;
    double m_minimumScale = 0;
};
