#include "quick/VextilQuickPhoto.h"

void VextilQuickPhoto::setReview(VextilQuickReview *review)
{
    if (review == m_review)
        return;
    if (m_review)
        disconnect(m_review->photo(), nullptr, this, nullptr);
    m_review = review;
    if (review)
        connect(review->photo(), &VextilPhotoAnimation::changed, this, [this] { update(); });
    Q_EMIT reviewChanged();
    update();
}

void VextilQuickPhoto::paint(QPainter *painter)
{
    if (m_review)
        m_review->photo()->paint(*painter, size());
}
