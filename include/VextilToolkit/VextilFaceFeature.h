#pragma once

#include <QList>
#include <QPointF>
#include <QRectF>

#include <optional>

/// One face found in an image.
struct VextilFaceFeature {
    QRectF bounds;          ///< face rectangle in image pixels, origin at the bottom left
    /// Whether the face smiles: judged on this image alone in still mode, on this frame or the
    /// one before in stream mode (see VextilFaceDetector).
    bool hasSmile = false;
    /// How strongly the face smiles, as log-odds (above 0 leans to a smile), for detectors that
    /// grade it, judged like hasSmile. The face capture model measures a graded smile against
    /// the user's own neutral frames of the same capture (see VextilFaceCameraModel).
    std::optional<float> smileScore = std::nullopt;
    /// Key points where the detector finds them, in image pixels with the origin at the bottom
    /// left: right eye, left eye, nose tip, mouth centre (in that order); empty otherwise. The
    /// capture follows a face by its eyes, which a smile leaves where they are.
    QList<QPointF> keyPoints = {};
};
