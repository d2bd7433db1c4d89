#include "capture/VextilPreviewPainter.h"

#include <QPainter>

void VextilPreviewPainter::paint(QPainter &painter, QSizeF area, const QImage &frame, bool mirrored)
{
    const QRectF target(QPointF(0, 0), area);
    const QRectF source = filledPart(frame.size(), area);
    if (source.isEmpty()) {
        painter.fillRect(target, Qt::black);
        return;
    }
    painter.save();
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    if (mirrored)
        painter.setTransform(QTransform(-1, 0, 0, 1, area.width(), 0), true);
    painter.drawImage(target, frame, source);
    painter.restore();
}

QRectF VextilPreviewPainter::filledPart(QSizeF frame, QSizeF area)
{
    if (frame.isEmpty() || area.isEmpty())
        return {};
    const QSizeF part = area.scaled(frame, Qt::KeepAspectRatio);
    return {QPointF((frame.width() - part.width()) / 2, (frame.height() - part.height()) / 2), part};
}
