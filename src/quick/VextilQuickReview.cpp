#include "quick/VextilQuickReview.h"

VextilQuickReview::VextilQuickReview(QObject *parent) : QObject(parent)
{
    m_model.isDocument(false);
    m_model.setDelegate(this);
}

void VextilQuickReview::load() { m_model.getImages(); }

void VextilQuickReview::discard()
{
    m_model.clearData();
    setFaceImages(nullptr);
}

void VextilQuickReview::setFaceImages(std::shared_ptr<QList<QImage>> images)
{
    m_photo.setFrames(images ? *images : QList<QImage>());
    Q_EMIT imagesChanged();
}
