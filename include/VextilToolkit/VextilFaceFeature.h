#pragma once

#include <QRectF>

#include <optional>

/// One face found in an image.
struct VextilFaceFeature {
    QRectF bounds;          ///< face rectangle in image pixels, origin at the bottom left
    bool hasSmile = false;  ///< whether the face smiles, judged on this image alone
    /// How strongly the face smiles, as log-odds (above 0 leans to a smile), for detectors that
    /// grade it. The face capture model judges a graded smile against the user's own resting
    /// face while it collects neutral images; without a grade it takes hasSmile as it is.
    std::optional<float> smileScore = std::nullopt;
};
