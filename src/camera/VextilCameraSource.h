#pragma once

#include <VextilToolkit/VextilFrameSource.h>

#include <QCameraDevice>

#include <memory>

class QCamera;
class QMediaCaptureSession;
class QVideoSink;

/// A camera through Qt Multimedia: the one the host named, if it is there; else the last device
/// reporting the front position; else (desktop webcams report none) the system's default camera,
/// which faces the user; else the first camera listed.
/// Each start opens the camera afresh in a new capture session and each stop closes it: a camera
/// that is only told to stop goes on delivering on some backends (and its light stays on), and a
/// session whose stream failed never delivers again.
class VextilCameraSource : public VextilFrameSource {
public:
    explicit VextilCameraSource(QString preferred = {});
    ~VextilCameraSource() override;

    void start() override;
    void stop() override;
    bool isRunning() const override;
    QString description() const override;
    bool isAvailable() const override;

    /// The device the toolkit uses, or a null device when there is none.
    static QCameraDevice chooseDevice(const QString &preferred = {});
    /// The system's cameras, each once: Qt 6.4's GStreamer backend lists a camera twice, under
    /// two ids, and may keep one entry after the camera is unplugged.
    static QList<QCameraDevice> cameras();

private:
    void open();

    QString m_preferred;
    QCameraDevice m_device;
    std::unique_ptr<QVideoSink> m_sink;
    std::unique_ptr<QMediaCaptureSession> m_session;
    std::unique_ptr<QCamera> m_camera;
};
