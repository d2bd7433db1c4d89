#pragma once

#include <VextilToolkit/VextilCameraFrame.h>

#include <QImage>
#include <QSize>
#include <QString>

#include <opencv2/core.hpp>
#include <opencv2/videoio.hpp>

#include <array>
#include <optional>

/// A video file's frames as its decoder gives them (blue, green, red), for the file reader and
/// the file source. Each frame's pixels live in one of a few buffers that are written again once
/// nothing holds them: a fresh multi-megabyte buffer for every frame at the file's rate leaves
/// the freed ones scattered over malloc's arenas. Not thread-safe; read from one thread.
class VextilVideoDecoder {
public:
    struct Frame {
        cv::Mat pixels;  ///< 8-bit, one, three or four channels; shared, never written again while held
        int index = 0;
        double seconds = 0;
    };

    bool open(const QString &path);
    bool isOpen() const { return m_capture.isOpened(); }
    QString errorString() const { return m_error; }
    double framesPerSecond() const { return m_fps; }
    int frameCount() const;
    QSize frameSize() const;
    /// When the next frame is due, in seconds from the first.
    double nextSeconds() const { return m_nextIndex / m_fps; }
    /// The next frame; nothing at the end, or at a damaged frame (see errorString()).
    std::optional<Frame> read();
    bool rewind();

    /// The pixels as a new Format_RGB32 image, as a camera delivering BGRX would give them.
    static QImage image(const cv::Mat &pixels);
    /// A camera frame over the pixels: only what the capture takes of them (a scaled region, a
    /// kept picture) is converted, with the same result as from image().
    static VextilCameraFrame cameraFrame(const cv::Mat &pixels);

private:
    cv::Mat &freeBuffer();

    cv::VideoCapture m_capture;
    // One frame in the capture's hands, one waiting for it, one being decoded.
    std::array<cv::Mat, 3> m_buffers;
    cv::Mat m_spare;  // when all are held: a buffer of its own, let go with its frame
    QString m_error;
    int m_nextIndex = 0;
    double m_fps = 15.0;
};
