#include "review/VextilPhotoAnimation.h"

#include <QPainter>
#include <QPainterPath>

VextilPhotoAnimation::VextilPhotoAnimation(QObject *parent) : QObject(parent)
{
    connect(&m_timer, &QTimer::timeout, this, [this] {
        if (m_frames.isEmpty())
            return;
        m_frame = (m_frame + 1) % int(m_frames.size());
        Q_EMIT changed();
    });
}

void VextilPhotoAnimation::setStill(const QImage &image)
{
    m_still = image;
    Q_EMIT changed();
}

void VextilPhotoAnimation::setFrames(const QList<QImage> &frames)
{
    m_frames = frames;
    m_frame = 0;
    if (m_frames.isEmpty())
        m_timer.stop();
    else
        m_timer.start(qMax(1, 1000 / int(m_frames.size())));
    Q_EMIT changed();
}

QImage VextilPhotoAnimation::currentImage() const { return m_frames.isEmpty() ? m_still : m_frames.value(m_frame); }

void VextilPhotoAnimation::paint(QPainter &painter, QSizeF area) const
{
    // Never cropped to the area's shape, whatever the window's: the whole capture shows.
    const QImage image = currentImage();
    if (image.isNull() || area.isEmpty())
        return;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    const QSizeF fitted = QSizeF(image.size()).scaled(area, Qt::KeepAspectRatio);
    const QRectF shown(QPointF((area.width() - fitted.width()) / 2, (area.height() - fitted.height()) / 2), fitted);
    QPainterPath clip;
    clip.addRoundedRect(shown, 10, 10);
    painter.setClipPath(clip);
    painter.drawImage(shown, image);
    painter.restore();
}
