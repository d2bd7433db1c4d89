#include "capture/VextilVideoPreview.h"

#include <QPainter>

VextilVideoPreview::VextilVideoPreview(QWidget *parent) : QWidget(parent)
{
    setAttribute(Qt::WA_OpaquePaintEvent);
}

void VextilVideoPreview::setFrame(const QImage &frame)
{
    m_frame = frame;
    update();
}

void VextilVideoPreview::setMirrored(bool mirrored)
{
    m_mirrored = mirrored;
    update();
}

void VextilVideoPreview::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.fillRect(rect(), Qt::black);
    const QImage &shown = m_frame;
    if (shown.isNull())
        return;
    const QSizeF filled = QSizeF(shown.size()).scaled(size(), Qt::KeepAspectRatioByExpanding);
    const QRectF target(QPointF((width() - filled.width()) / 2, (height() - filled.height()) / 2), filled);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    if (m_mirrored)
        painter.setTransform(QTransform(-1, 0, 0, 1, width(), 0));
    painter.drawImage(target, shown);
}
