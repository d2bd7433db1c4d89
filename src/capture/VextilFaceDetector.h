#pragma once

#include <VextilToolkit/VextilFaceFeature.h>
#include <VextilToolkit/VextilToolkitExport.h>

#include <QImage>
#include <QList>

#include <memory>

/// Finds faces and smiles in a still image. The face capture model calls it on the capture
/// thread, one image at a time; an implementation need not be thread-safe.
class VEXTIL_EXPORT VextilFaceDetector {
public:
    virtual ~VextilFaceDetector();

    /// Faces in the image, the most prominent (largest) first; empty when there is none or the
    /// image is null.
    virtual QList<VextilFaceFeature> featuresInImage(const QImage &image) = 0;

    /// The detector the toolkit uses when the host picks none.
    static std::shared_ptr<VextilFaceDetector> createDefault();
};
