#include "VextilToolkit/VextilVideoPreview.h"

#include <QPainter>

VextilVideoPreview::VextilVideoPreview(QWidget *parent) : QWidget(parent)
{
    setAttribute(Qt::WA_OpaquePaintEvent);
}

void VextilVideoPreview::setFrame(const QImage &frame)
{
    {
        std::lock_guard lock(m_mutex);
        m_frame = frame;
    }
    QMetaObject::invokeMethod(this, qOverload<>(&QWidget::update), Qt::QueuedConnection);
}

QImage VextilVideoPreview::frame() const
{
    std::lock_guard lock(m_mutex);
    return m_frame;
}

void VextilVideoPreview::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.fillRect(rect(), Qt::black);
    const QImage shown = frame();
    if (shown.isNull())
        return;
    const QSizeF filled = QSizeF(shown.size()).scaled(size(), Qt::KeepAspectRatioByExpanding);
    const QRectF target(QPointF((width() - filled.width()) / 2, (height() - filled.height()) / 2), filled);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(target, shown);
}
