#include "widgets/ui/VextilImageView.h"

#include "widgets/ui/VextilAccessibility.h"
#include "core/VextilImages.h"

#include <QPainter>

VextilImageView::VextilImageView(const QString &imageName, QWidget *parent) : QWidget(parent), m_name(imageName)
{
    VextilAccessibility::install();  // an image, to assistive technology
    setAttribute(Qt::WA_TranslucentBackground);
}

void VextilImageView::setImageName(const QString &name)
{
    m_name = name;
    m_cache = {};
    updateGeometry();
    update();
}

void VextilImageView::setContentMode(ContentMode mode)
{
    m_mode = mode;
    m_cache = {};
    update();
}

void VextilImageView::setTintColor(const QColor &tint)
{
    m_tint = tint;
    m_cache = {};
    update();
}

QSize VextilImageView::sizeHint() const { return VextilImages::naturalSize(m_name).toSize(); }

void VextilImageView::paintEvent(QPaintEvent *)
{
    const QSizeF natural = VextilImages::naturalSize(m_name);
    if (natural.isEmpty() || width() == 0 || height() == 0)
        return;
    QSizeF drawn = natural.scaled(size(), m_mode == ContentMode::ScaleAspectFill ? Qt::KeepAspectRatioByExpanding
                                                                              : Qt::KeepAspectRatio);
    const qreal ratio = devicePixelRatioF();
    if (m_cache.isNull() || m_cache.size() != (drawn * ratio).toSize())
        m_cache = VextilImages::render(m_name, drawn, ratio, m_tint);
    QPainter painter(this);
    const QPointF origin((width() - drawn.width()) / 2, (height() - drawn.height()) / 2);
    painter.drawImage(origin, m_cache);  // aspect fill overflows the rectangle and is clipped
}
