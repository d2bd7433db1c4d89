#include "capture/VextilPreviewPainter.h"

#include <QPainter>

void VextilPreviewPainter::paint(QPainter &painter, QSizeF area, const QImage &frame, bool mirrored)
{
    painter.fillRect(QRectF(QPointF(0, 0), area), Qt::black);
    if (frame.isNull())
        return;
    const QSizeF filled = QSizeF(frame.size()).scaled(area, Qt::KeepAspectRatioByExpanding);
    const QRectF target(QPointF((area.width() - filled.width()) / 2, (area.height() - filled.height()) / 2), filled);
    painter.save();
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    if (mirrored)
        painter.setTransform(QTransform(-1, 0, 0, 1, area.width(), 0), true);
    painter.drawImage(target, frame);
    painter.restore();
}
