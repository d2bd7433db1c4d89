#pragma once

#include <VextilToolkit/VextilCameraFrame.h>

#include <QImage>
#include <QRect>
#include <QSize>

#include <memory>

struct AVFrame;

/// A video picture as its decoder left it (YUV planes, mostly), shared by everything that holds
/// it and never written while held. Only what is asked for is converted: a whole picture, a
/// region at its own size (a kept picture) or a region scaled down (the networks' copy).
class VextilDecodedPicture {
public:
    VextilDecodedPicture() = default;
    /// Takes over a reference to the decoder's picture; `rotation` is the clockwise turn that
    /// makes it upright.
    VextilDecodedPicture(std::shared_ptr<const AVFrame> frame, int rotation);

    bool isNull() const { return !m_frame; }
    /// Size as stored, before rotation.
    QSize size() const;
    int rotation() const { return m_rotation; }
    /// Where the first plane's pixels live: pictures over the same buffer share it.
    const void *pixels() const;

    /// The whole picture as Format_RGB32; null when it cannot be converted.
    QImage image() const;
    /// `region` scaled to `size` as Format_RGB32. At the region's own size each pixel is the one
    /// image() has; scaled, it is filtered from the planes without a whole-size copy.
    QImage scaledRegion(QRect region, QSize size) const;
    /// The picture as the capture takes it, converted only where it is used.
    VextilCameraFrame cameraFrame() const;

private:
    QImage exactRegion(QRect region) const;
    QImage filteredRegion(QRect region, QSize size) const;

    std::shared_ptr<const AVFrame> m_frame;
    int m_rotation = 0;
};
