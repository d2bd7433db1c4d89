#include "quick/VextilQuickArtwork.h"

#include "core/VextilImages.h"

#include <QPainter>
#include <QQuickWindow>

VextilQuickArtwork::VextilQuickArtwork(QQuickItem *parent) : QQuickPaintedItem(parent) {}

void VextilQuickArtwork::setName(const QString &name)
{
    if (name == m_name)
        return;
    m_name = name;
    const QSizeF natural = VextilImages::naturalSize(name);
    setImplicitSize(natural.width(), natural.height());
    update();
    Q_EMIT nameChanged();
}

void VextilQuickArtwork::setTint(const QColor &tint)
{
    if (tint == m_tint)
        return;
    m_tint = tint;
    update();
    Q_EMIT tintChanged();
}

void VextilQuickArtwork::setFill(bool fill)
{
    if (fill == m_fill)
        return;
    m_fill = fill;
    update();
    Q_EMIT fillChanged();
}

void VextilQuickArtwork::paint(QPainter *painter)
{
    const QSizeF natural = VextilImages::naturalSize(m_name);
    if (natural.isEmpty() || size().isEmpty())
        return;
    const QSizeF drawn = natural.scaled(size(), m_fill ? Qt::KeepAspectRatioByExpanding : Qt::KeepAspectRatio);
    const qreal ratio = window() ? window()->effectiveDevicePixelRatio() : 1.0;
    const QImage image = VextilImages::render(m_name, drawn, ratio, m_tint);
    painter->drawImage(QRectF(QPointF((width() - drawn.width()) / 2, (height() - drawn.height()) / 2), drawn), image);
}
