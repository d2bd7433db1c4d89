#pragma once

#include <VextilToolkit/VextilCameraFrame.h>
#include <VextilToolkit/VextilToolkitExport.h>

#include <QImage>
#include <QString>

#include <functional>
#include <memory>

/// Where camera frames come from: the front camera, or a video file standing in for it. Frames
/// are delivered on the source's own thread, with their rotation and mirroring, and their pixels
/// are converted only when the capture keeps them.
class VEXTIL_EXPORT VextilFrameSource {
public:
    using FrameHandler = std::function<void(const VextilCameraFrame &frame)>;

    virtual ~VextilFrameSource();
    /// Receives every frame; set before start().
    void setFrameHandler(FrameHandler handler) { m_handler = std::move(handler); }
    /// Starts delivering frames (again); GUI thread.
    virtual void start() = 0;
    /// Stops delivering frames and waits until none is being delivered; GUI thread.
    virtual void stop() = 0;
    /// Whether frames are being delivered.
    virtual bool isRunning() const = 0;
    /// What the source is, for the demo and logs ("front camera: …", "video file: …").
    virtual QString description() const = 0;
    /// Whether the source can deliver at all (a camera exists, the file opens).
    virtual bool isAvailable() const = 0;

    /// The camera named (by description or id) if it is there, else the front camera (see README
    /// for the choice when none reports a position). Never a stand-in: the host puts one in the
    /// camera's place in code (VextilFace::setFrameSourceFactory).
    static std::unique_ptr<VextilFrameSource> createDefault(const QString &camera = {});
    /// The descriptions of the system's cameras, each camera once (some backends list a camera
    /// twice).
    static QStringList cameraNames();

protected:
    void deliver(const VextilCameraFrame &frame) const
    {
        if (m_handler)
            m_handler(frame);
    }

private:
    FrameHandler m_handler;
};
