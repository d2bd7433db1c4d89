#pragma once

#include <VextilToolkit/VextilToolkitExport.h>

#include <QImage>
#include <QRect>
#include <QSize>

#include <functional>
#include <memory>

/// One frame as a frame source delivers it: its pixels, converted only when first asked for,
/// and what the camera says about turning them upright. Copies share the pixels.
class VEXTIL_EXPORT VextilCameraFrame {
public:
    /// Makes `region` of the stored pixels, scaled to `size`, as a Format_RGB32 image.
    using RegionConverter = std::function<QImage(QRect region, QSize size)>;

    /// A null frame.
    VextilCameraFrame();
    /// A frame whose pixels are already an image (Format_RGB32 is used as it is).
    VextilCameraFrame(QImage image, int rotation = 0, bool mirrored = false);
    /// A frame of `size` whose pixels `convert` makes on first use, on the thread that first
    /// asks: a frame that is dropped is never converted.
    VextilCameraFrame(QSize size, std::function<QImage()> convert, int rotation = 0, bool mirrored = false);
    /// As above, with a converter that makes a scaled region straight from the source's pixels,
    /// for a small copy that costs a fraction of the whole image.
    VextilCameraFrame(QSize size, std::function<QImage()> convert, RegionConverter convertRegion, int rotation = 0,
                      bool mirrored = false);

    bool isNull() const;
    /// Size of the pixels as stored, before rotation.
    QSize size() const;
    /// Clockwise turn, in degrees (0, 90, 180 or 270), that makes the stored pixels upright.
    int rotation() const;
    /// Whether the platform asks for the frame to be shown mirrored (front cameras). The stored
    /// pixels are the scene as it is; mirroring is for display only.
    bool isMirrored() const;
    /// The stored pixels as a Format_RGB32 image, converted on the first call; any thread.
    QImage image() const;
    /// `region` of the stored pixels scaled to `size` (Format_RGB32): from the source's pixels
    /// when it can, from image() when that has been made or the source cannot. Not kept.
    QImage scaledRegion(QRect region, QSize size) const;

private:
    struct Data;
    std::shared_ptr<Data> d;
};
