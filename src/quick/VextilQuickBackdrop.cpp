#include "quick/VextilQuickBackdrop.h"

#include "core/VextilBackdropBlur.h"

#include <QPainter>
#include <QQuickItemGrabResult>

VextilQuickBackdrop::VextilQuickBackdrop(QQuickItem *parent) : QQuickPaintedItem(parent) {}

void VextilQuickBackdrop::setSource(QQuickItem *source)
{
    if (source == m_source)
        return;
    m_source = source;
    Q_EMIT sourceChanged();
}

void VextilQuickBackdrop::capture()
{
    if (!m_source || !m_source->window() || m_source->size().isEmpty())
        return;
    m_grab = m_source->grabToImage();
    if (!m_grab)
        return;
    connect(m_grab.data(), &QQuickItemGrabResult::ready, this, [this, grab = m_grab.data()] {
        if (grab != m_grab.data())
            return;  // an older picture, replaced by a newer request
        m_picture = VextilBackdropBlur::blurred(grab->image());
        m_grab.reset();
        update();
    });
}

void VextilQuickBackdrop::paint(QPainter *painter)
{
    const QRectF whole(QPointF(0, 0), size());
    painter->fillRect(whole, Qt::black);
    if (m_source && !m_picture.isNull()) {
        // The picture lies where its source lies.
        const QPointF at = mapFromItem(m_source, QPointF(0, 0));
        painter->setRenderHint(QPainter::SmoothPixmapTransform);
        painter->drawImage(QRectF(at, m_source->size()), m_picture);
    }
    painter->fillRect(whole, QColor(0, 0, 0, 140));  // the dark style of the blur
}
