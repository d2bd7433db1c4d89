#pragma once

#include <VextilToolkit/VextilCameraFrame.h>

#include <QImage>
#include <QRect>
#include <QSizeF>

/// What the camera screen shows, analyses and stores of a camera frame: the frame turned upright
/// by its rotation, cropped to the middle region that a view of the given size shows when the
/// frame fills it. Only that region is copied and turned. Mirroring is left to the display.
class VextilUprightFrame {
public:
    /// The upright, cropped picture; a null image for a null frame. An empty view crops nothing.
    /// Only the region is converted, where the frame's source allows.
    static QImage image(const VextilCameraFrame &frame, QSizeF viewSize);
    /// The same picture in three bytes a pixel (Format_RGB888), as a capture keeps it: seven of
    /// them wait for the upload, and the fourth byte would be a quarter of their memory.
    static QImage kept(const VextilCameraFrame &frame, QSizeF viewSize);
    /// The same picture scaled down so that its longer side is at most `longestSide`, made from
    /// the frame's own pixels where the source allows (see VextilCameraFrame::scaledRegion).
    static QImage scaledImage(const VextilCameraFrame &frame, QSizeF viewSize, int longestSide);
    /// The region of an upright picture of `upright` size that a view of `viewSize` shows when
    /// the picture fills it, keeping its aspect: the middle, as wide or as tall as the picture.
    static QRect visibleRegion(QSize upright, QSizeF viewSize);
    /// The same region of pixels before a clockwise turn of `rotation` degrees, in a stored
    /// picture of `stored` size.
    static QRect storedRegion(QRect upright, QSize stored, int rotation);
};
