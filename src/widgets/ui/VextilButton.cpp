#include "widgets/ui/VextilButton.h"

#include "core/VextilImages.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>

VextilButton::VextilButton(QWidget *parent) : QAbstractButton(parent)
{
    setFocusPolicy(Qt::StrongFocus);
    setCursor(Qt::PointingHandCursor);
}

void VextilButton::setImageName(const QString &name) { m_imageName = name; updateGeometry(); update(); }
void VextilButton::setTintColor(const QColor &color) { m_tint = color; update(); }
void VextilButton::setTitleColor(const QColor &color) { m_titleColor = color; update(); }
void VextilButton::setBackgroundColor(const QColor &color) { m_background = color; update(); }
void VextilButton::setCornerRadius(qreal radius) { m_radius = radius; update(); }
void VextilButton::setContentEdgeInsets(const QMarginsF &insets) { m_contentInsets = insets; updateGeometry(); update(); }
void VextilButton::setImageEdgeInsets(const QMarginsF &insets) { m_imageInsets = insets; update(); }
void VextilButton::setTitleEdgeInsets(const QMarginsF &insets) { m_titleInsets = insets; update(); }

QSizeF VextilButton::imageSize() const { return VextilImages::naturalSize(m_imageName); }

QSize VextilButton::sizeHint() const
{
    const QSizeF image = imageSize();
    const QFontMetricsF metrics(font());
    const QSizeF title = text().isEmpty() ? QSizeF(0, 0) : QSizeF(metrics.horizontalAdvance(text()), metrics.height());
    const QSizeF content(image.width() + title.width(), qMax(image.height(), title.height()));
    return (content.grownBy(m_contentInsets)).toSize();
}

void VextilButton::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (m_background.isValid()) {
        QPainterPath shape;
        shape.addRoundedRect(QRectF(rect()), m_radius, m_radius);
        painter.fillPath(shape, isDown() ? m_background.darker(115) : m_background);
    }
    if (showsFocusRing()) {
        // Whenever the button has the focus (given on appearing too: a keyboard user must see
        // where Space will act), in the button's own ink, just inside its edge.
        const QColor ink = text().isEmpty() && m_tint.isValid() ? m_tint : m_titleColor;
        painter.setPen(QPen(ink, 2));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(QRectF(rect()).adjusted(3, 3, -3, -3), std::max<qreal>(0, m_radius - 2),
                                std::max<qreal>(0, m_radius - 2));
    }
    const QRectF content = QRectF(rect()).marginsRemoved(m_contentInsets);
    const QSizeF image = imageSize();
    const QFontMetricsF metrics(font());
    const qreal titleWidth = text().isEmpty() ? 0 : metrics.horizontalAdvance(text());

    // An image alone fills the content area grown or shrunk by its insets; beside a title the
    // pair is centred and each part is nudged by half its insets, as UIKit buttons do.
    if (text().isEmpty()) {
        const QRectF area = content.marginsRemoved(m_imageInsets);
        const QSizeF drawn = image.scaled(area.size(), Qt::KeepAspectRatio);
        const QRectF target(area.center() - QPointF(drawn.width() / 2, drawn.height() / 2), drawn);
        painter.drawImage(target, VextilImages::render(m_imageName, drawn, devicePixelRatioF(), m_tint));
        return;
    }
    const qreal pairWidth = image.width() + titleWidth;
    qreal x = content.center().x() - pairWidth / 2;
    if (!image.isEmpty()) {
        const QPointF nudge((m_imageInsets.left() - m_imageInsets.right()) / 2, (m_imageInsets.top() - m_imageInsets.bottom()) / 2);
        const QRectF target(QPointF(x, content.center().y() - image.height() / 2) + nudge, image);
        painter.drawImage(target, VextilImages::render(m_imageName, image, devicePixelRatioF(), m_tint));
        x += image.width();
    }
    const QPointF nudge((m_titleInsets.left() - m_titleInsets.right()) / 2, (m_titleInsets.top() - m_titleInsets.bottom()) / 2);
    painter.setPen(m_titleColor);
    painter.setFont(font());
    painter.drawText(QRectF(QPointF(x, content.top()) + nudge, QSizeF(titleWidth, content.height())), Qt::AlignCenter, text());
}

void centerButtonAndImageWithSpacing(VextilButton *button, qreal spacing)
{
    button->setImageEdgeInsets(QMarginsF(0, 0, spacing, 0));
    button->setTitleEdgeInsets(QMarginsF(spacing, 0, 0, 0));
}
