#pragma once

#include <VextilToolkit/VextilToolkitExport.h>

#include <QImage>
#include <QList>

#include <memory>

/// How the review model hands images to the review screen. GUI thread.
class VEXTIL_EXPORT VextilConfirmModelDelegate {
public:
    virtual ~VextilConfirmModelDelegate();
    /// Show this document image.
    virtual void setDocumentImage(const QImage &image) = 0;
    /// Show these face images, neutral first; null when there are none.
    virtual void setFaceImages(std::shared_ptr<QList<QImage>> images) = 0;
};
