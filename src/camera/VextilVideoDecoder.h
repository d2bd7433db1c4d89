#pragma once

#include "camera/VextilDecodedPicture.h"

#include <QSize>
#include <QString>

#include <memory>
#include <optional>

/// A video file's pictures as its codec decodes them, for the file reader and the file source.
/// A picture stays in the codec's own buffer, which the codec uses again once nothing holds the
/// picture: a file source costs the pictures in hand, not a converted copy of each besides.
/// Not thread-safe; read from one thread.
class VextilVideoDecoder {
public:
    struct Frame {
        VextilDecodedPicture picture;
        int index = 0;
        double seconds = 0;
    };

    VextilVideoDecoder();
    ~VextilVideoDecoder();
    VextilVideoDecoder(const VextilVideoDecoder &) = delete;
    VextilVideoDecoder &operator=(const VextilVideoDecoder &) = delete;

    bool open(const QString &path);
    bool isOpen() const;
    QString errorString() const { return m_error; }
    double framesPerSecond() const { return m_fps; }
    /// Frames the file states, or 0 when it states none.
    int frameCount() const { return m_frameCount; }
    /// Size of the pictures once turned upright.
    QSize frameSize() const;
    /// When the next frame is due, in seconds from the first.
    double nextSeconds() const { return m_nextIndex / m_fps; }
    /// The next frame; nothing at the end, or at a damaged frame (see errorString()).
    std::optional<Frame> read();
    /// Back to the first frame.
    bool rewind();

private:
    struct Codec;
    bool receive(Frame &frame);
    void fail(const QString &why);

    std::unique_ptr<Codec> m_codec;
    QString m_path;
    QString m_error;
    int m_nextIndex = 0;
    int m_frameCount = 0;
    int m_rotation = 0;
    double m_fps = 15.0;
    bool m_draining = false;
};
