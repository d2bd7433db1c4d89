#pragma once

#include <VextilToolkit/VextilToolkitExport.h>

#include <QImage>
#include <QSize>
#include <QString>

#include <memory>
#include <optional>

/// One frame read from a video file, as the camera path delivers it.
struct VextilVideoFileFrame {
    QImage image;        ///< Format_RGB32, as a camera delivering BGRX gives it
    int index = 0;       ///< frame number from 0
    double seconds = 0;  ///< presentation time: index / frames per second
};

/// Reads a video file frame by frame through the same conversion as camera frames, so that a
/// clip can stand in for the camera where there is none. Not thread-safe; use from one thread.
class VEXTIL_EXPORT VextilVideoFileReader {
public:
    VextilVideoFileReader();
    ~VextilVideoFileReader();
    VextilVideoFileReader(const VextilVideoFileReader &) = delete;
    VextilVideoFileReader &operator=(const VextilVideoFileReader &) = delete;

    /// Opens a video file; false, with errorString(), when it cannot be read.
    bool open(const QString &path);
    /// Whether a file is open.
    bool isOpen() const;
    /// Why the last open() failed, or why reading stopped early at a damaged frame; empty otherwise.
    QString errorString() const;
    /// Frames per second stated by the file (15 when the file states none).
    double framesPerSecond() const;
    /// Number of frames stated by the file, or 0 when unknown.
    int frameCount() const;
    /// Size of the frames.
    QSize frameSize() const;
    /// The next frame; nothing at the end of the file, at a damaged frame that ends it (see
    /// errorString()), or when none is open.
    std::optional<VextilVideoFileFrame> readFrame();
    /// Goes back to the first frame.
    bool rewind();

private:
    struct Private;
    std::unique_ptr<Private> d;
};
