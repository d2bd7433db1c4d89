#pragma once

#include <VextilToolkit/VextilFaceFeature.h>

#include "capture/VextilFaceAppearance.h"

#include <QPointF>
#include <QRectF>

/// One analysed frame's face as the face track saw it: what the detector said, where the face
/// is against the camera view, how it looks and how far it moved since the track's previous frame.
struct VextilTrackedFace {
    VextilFaceFeature feature;  ///< as the detector found it
    QRectF box;                 ///< the face in the image, origin top left
    double seconds = 0;         ///< the capture clock's time of the frame
    /// The face's on-screen width as a share of the view's width; not a number without a view.
    double widthInView = 0;
    /// The face's centre from the view's centre, as shares of the view's width and height.
    QPointF offsetInView;
    /// Where its look is taken: a square placed by the eyes where the detector gives them (a
    /// smile moves the mouth, and with it the box, but not the eyes), else the box.
    QRectF lookBox;
    VextilFaceAppearance appearance;  ///< its coarse look there, and its brightness
    /// How its look changed since the track's previous frame, both looked at through the
    /// previous frame's look box: what changed in the picture, not where the face was found.
    VextilFaceAppearance lookChange;
    double shift = 0;        ///< movement since the track's previous frame, in face widths
    double resize = 0;       ///< size change since then, as the absolute log of the ratio
    double sceneChange = 0;  ///< mean grey change of the whole frame since the frame before
};
