#pragma once

#include <VextilToolkit/VextilCameraFrame.h>
#include <VextilToolkit/VextilSampleBuffer.h>

#include <QImage>
#include <QVideoFrame>

/// Presents a Qt Multimedia video frame as a sample buffer for the frame conversion.
/// BGRA and BGRx frames are mapped and read as they are; the cameras' YUV formats (YUYV, UYVY,
/// NV12, NV21, I420, YV12, planar 4:2:2) are converted from their planes with OpenCV, through
/// scaledRegion (Qt's own conversion is slower, and crashes on planar 4:2:2 in Qt 6.4; 4:2:2
/// chroma is read at half height, as 4:2:0 holds it); any other
/// pixel format goes through Qt's own conversion. The buffer is valid while this object lives.
class VextilVideoFrameMapping {
public:
    /// Maps (or converts) the frame for reading; check sampleBuffer().status().
    explicit VextilVideoFrameMapping(const QVideoFrame &frame);
    /// Unmaps the frame.
    ~VextilVideoFrameMapping();
    VextilVideoFrameMapping(const VextilVideoFrameMapping &) = delete;
    VextilVideoFrameMapping &operator=(const VextilVideoFrameMapping &) = delete;

    /// The frame's plane; status() is not Ok when the frame could not be read.
    const VextilSampleBuffer &sampleBuffer() const { return m_buffer; }
    /// True when the frame's own memory is read without a format conversion.
    bool isDirect() const { return m_mapped; }

    /// True for pixel formats whose memory layout already is blue, green, red, ignored byte.
    static bool isDirectFormat(QVideoFrameFormat::PixelFormat format);
    /// True for the YUV formats converted from their planes.
    static bool isYuvFormat(QVideoFrameFormat::PixelFormat format);
    /// `region` of the frame scaled to `size`, as Format_RGB32: for the YUV formats, the region of
    /// each plane is scaled before the colours are converted, so a small copy costs little
    /// whatever the frame's size. A copy at the region's own size (a picture the capture keeps)
    /// is read in the frame's colour space; smaller copies, for the networks and the preview, read
    /// BT.709 as BT.601 (a few levels of colour, which would double their cost at 1080p).
    /// Null when the frame cannot be read.
    static QImage scaledRegion(const QVideoFrame &frame, QRect region, QSize size);
    /// The frame as the capture takes it: whole image and small copies made on demand, turned
    /// and mirrored as Qt reports.
    static VextilCameraFrame cameraFrame(const QVideoFrame &frame);

private:
    QVideoFrame m_frame;
    QImage m_converted;
    VextilSampleBuffer m_buffer;
    bool m_mapped = false;
};
