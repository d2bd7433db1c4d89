#include <VextilToolkit/VextilConfirmModel.h>

#include <VextilToolkit/VextilRepository.h>

#include "core/VextilTexts.h"

#include <QCoreApplication>

QString VextilConfirmModel::getMessageText() const
{
    // The selfie case asks about a "video": that is the wording the backend's users know.
    return m_isDocument ? VextilTexts::tr("Are all the fields in the above document readable?")
                        : VextilTexts::tr("Do you want to submit this video for review?");
}

QString VextilConfirmModel::getAcceptButtonText() const
{
    return m_isDocument ? VextilTexts::tr("Yes, send document") : VextilTexts::tr("Yes, send");
}

QString VextilConfirmModel::getCancelButtonText() const { return VextilTexts::tr("No, take another photo."); }

QString VextilConfirmModel::getNavigationTitle() const
{
    return m_isDocument ? VextilTexts::tr("Send document") : VextilTexts::tr("Send selfie");
}

void VextilConfirmModel::getImages() const
{
    auto *delegate = dynamic_cast<VextilConfirmModelDelegate *>(m_delegate.data());
    if (!delegate)
        return;
    const VextilRepository *store = VextilRepository::sharedInstance();
    if (m_isDocument) {
        // Any side other than the front counts as the back here.
        delegate->setDocumentImage(m_documentSide != VextilDocumentSideFront ? store->getDocumentBackImage()
                                                                            : store->getDocumentFrontImage());
        return;
    }
    const auto neutral = store->getFaceImages();
    if (!neutral) {
        delegate->setFaceImages(nullptr);
        return;
    }
    auto all = std::make_shared<QList<QImage>>(*neutral);
    if (const auto smiling = store->getFaceSmileImagess())
        all->append(*smiling);
    delegate->setFaceImages(all);
}

void VextilConfirmModel::clearData() const
{
    VextilRepository *store = VextilRepository::sharedInstance();
    if (!m_isDocument)
        store->resetFaceImages();
    else if (m_documentSide == VextilDocumentSideFront)
        store->resetDocumentFront();
    else if (m_documentSide == VextilDocumentSideBack)
        store->resetDocumentBack();
    // Other sides drop nothing, unlike getImages, which shows the back for them.
}
