#pragma once

#include <QLabel>

#include <functional>

/// A label that can shrink its font to fit its width before eliding, down to a minimum scale, or
/// wrap to a number of lines and elide the last.
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
    /// With word wrap on, the most lines shown; a longer text ends its last line in an ellipsis
    /// (0, the default, means no limit).
    void setMaximumLines(int lines);
    /// Sets the text and, unless told not to (the owner then calls refreshAccessibleName), the
    /// accessible name, which announces the change to assistive technology.
    void setText(const QString &text, bool announce = true);
    /// Makes the accessible name from the text (by default the text itself); the name is
    /// announced only when it changes.
    void setAccessibleNameFor(std::function<QString(const QString &text)> name);
    /// Makes the name again (what it is made from has changed) and announces it if it differs.
    void refreshAccessibleName();
    /// Lets the label take the keyboard focus (Tab stops on it), with a ring in its text colour.
    void setFocusable(bool focusable);
    /// The whole text, even when it is shown elided.
    QString fullText() const { return m_text; }

Q_SIGNALS:
    /// The label was painted (what it shows now reached the screen's buffer).
    void painted();

protected:
    void resizeEvent(QResizeEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void fit();
    QString wrappedText() const;
    std::function<QString(const QString &)> m_nameFor;
    QString m_text;
    QFont m_baseFont;
    bool m_adjusts = false;
    double m_minimumScale = 0;
    int m_maximumLines = 0;
};
