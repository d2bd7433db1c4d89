#include "widgets/capture/VextilFaceProgressBar.h"

#include "widgets/ui/VextilAccessibility.h"

#include <QPainter>
#include <QPainterPath>

VextilFaceProgressBar::VextilFaceProgressBar(QWidget *parent) : QWidget(parent)
{
    VextilAccessibility::install();  // a progress bar, to assistive technology
}

void VextilFaceProgressBar::updateProgress(double progress)
{
    m_hasFill = true;
    m_strokeEnd = progress;
    VextilAccessibility::setDescription(this, QStringLiteral("%1%").arg(qRound(progress * 100)));
    if (m_animation)
        m_animation->stop();  // deletes itself; the fill goes on from where it stands
    m_animation = new QVariantAnimation(this);
    m_animation->setDuration(kAnimationMs);
    m_animation->setEasingCurve(QEasingCurve::Linear);
    m_animation->setStartValue(m_shown);
    m_animation->setEndValue(progress);
    connect(m_animation, &QVariantAnimation::valueChanged, this, [this](const QVariant &value) {
        m_shown = value.toDouble();
        update();
    });
    m_animation->start(QAbstractAnimation::DeleteWhenStopped);
}

void VextilFaceProgressBar::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QPainterPath track;
    track.addRoundedRect(QRectF(rect()), 4, 4);
    painter.setClipPath(track);  // rounds the fill's ends too
    painter.fillRect(rect(), trackColor());
    if (m_hasFill)
        painter.fillRect(QRectF(0, 0, width() * qBound(0.0, m_shown, 1.0), height()), fillColor());
}
