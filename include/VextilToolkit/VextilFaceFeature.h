#pragma once

#include <QRectF>

/// One face found in an image.
struct VextilFaceFeature {
    QRectF bounds;          ///< face rectangle in image pixels, origin at the bottom left
    bool hasSmile = false;  ///< whether the face smiles
};
