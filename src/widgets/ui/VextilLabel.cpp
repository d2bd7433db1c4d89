#include "widgets/ui/VextilLabel.h"

#include <QAccessible>
#include <QFontMetricsF>
#include <QPainter>
#include <QTextLayout>

#include <algorithm>

VextilLabel::VextilLabel(QWidget *parent) : QLabel(parent), m_baseFont(font()) {}

void VextilLabel::setAdjustsFontSizeToFitWidth(bool adjusts)
{
    m_adjusts = adjusts;
    fit();
}

void VextilLabel::setMinimumScaleFactor(double factor)
{
    m_minimumScale = factor;
    fit();
}

void VextilLabel::setBaseFont(const QFont &font)
{
    m_baseFont = font;
    fit();
}

void VextilLabel::setMaximumLines(int lines)
{
    m_maximumLines = lines;
    fit();
}

void VextilLabel::setText(const QString &text, bool announce)
{
    if (text == m_text)
        return;
    m_text = text;
    fit();
    if (announce)
        refreshAccessibleName();
}

void VextilLabel::setAccessibleNameFor(std::function<QString(const QString &)> name)
{
    m_nameFor = std::move(name);
    refreshAccessibleName();
}

void VextilLabel::refreshAccessibleName()
{
    const QString name = m_nameFor ? m_nameFor(m_text) : m_text;
    if (name != accessibleName())
        setAccessibleName(name);  // which tells assistive technology, once
}

void VextilLabel::setFocusable(bool focusable)
{
    setFocusPolicy(focusable ? Qt::TabFocus : Qt::NoFocus);
}

void VextilLabel::paintEvent(QPaintEvent *event)
{
    QLabel::paintEvent(event);
    Q_EMIT painted();
    if (!hasFocus())
        return;
    // Around the text, not across the whole line, with room to clear it.
    const QFontMetricsF metrics(font());
    const QSizeF ring(std::min<qreal>(width() - 2, metrics.horizontalAdvance(QLabel::text()) + 16),
                      std::min<qreal>(height() - 2, metrics.height() + 6));
    const QRectF area = QRectF(rect()).adjusted(1, 1, -1, -1);
    QRectF around(QPointF(0, 0), ring);
    around.moveCenter(area.center());
    if (alignment() & Qt::AlignLeft)
        around.moveLeft(area.left());
    else if (alignment() & Qt::AlignRight)
        around.moveRight(area.right());
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(palette().color(QPalette::WindowText), 2));
    painter.drawRoundedRect(around, 6, 6);
}

void VextilLabel::resizeEvent(QResizeEvent *event)
{
    QLabel::resizeEvent(event);
    fit();
}

void VextilLabel::fit()
{
    QFont font = m_baseFont;
    if (wordWrap() || width() <= 0) {
        setFont(font);
        QLabel::setText(wordWrap() ? wrappedText() : m_text);
        return;
    }
    const qreal base = font.pixelSize() > 0 ? font.pixelSize() : font.pointSizeF();
    const auto apply = [&font](qreal size) {
        if (font.pixelSize() > 0)
            font.setPixelSize(qMax(1, int(size)));
        else
            font.setPointSizeF(size);
    };
    // Step the size down until the text fits the width or the minimum scale is reached.
    if (m_adjusts) {
        const qreal smallest = base * (m_minimumScale > 0 ? m_minimumScale : 0.1);
        for (qreal size = base; QFontMetricsF(font).horizontalAdvance(m_text) > width() && size > smallest;) {
            size = qMax(smallest, size - 0.5);
            apply(size);
        }
    }
    setFont(font);
    QLabel::setText(QFontMetricsF(font).elidedText(m_text, Qt::ElideRight, width()));
}

// The text cut to the line limit: the lines that fit as they wrap, the last one elided, with
// explicit breaks so that the label wraps them the same way; the text itself when it fits.
QString VextilLabel::wrappedText() const
{
    const qreal width = contentsRect().width();
    if (m_maximumLines <= 0 || width <= 0)
        return m_text;
    QTextLayout layout(m_text, font());
    QTextOption option(alignment());
    option.setWrapMode(QTextOption::WordWrap);
    layout.setTextOption(option);
    layout.beginLayout();
    QStringList lines;
    bool truncated = false;
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(width);
        if (lines.size() == m_maximumLines - 1) {  // the last line allowed takes all that is left
            const QString rest = m_text.mid(line.textStart()).simplified();
            lines.append(QFontMetricsF(font()).elidedText(rest, Qt::ElideRight, width));
            truncated = lines.last() != rest;
            break;
        }
        lines.append(m_text.mid(line.textStart(), line.textLength()).trimmed());
    }
    layout.endLayout();
    return truncated ? lines.join(u'\n') : m_text;
}
