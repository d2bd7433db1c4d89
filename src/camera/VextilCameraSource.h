#pragma once

#include <VextilToolkit/VextilFrameSource.h>

#include <QCameraDevice>

#include <memory>

class QCamera;
class QMediaCaptureSession;
class QVideoSink;

/// The front camera through Qt Multimedia: the last device reporting the front position; when
/// none reports a position (desktop webcams), the system's default camera, which faces the user.
class VextilCameraSource : public VextilFrameSource {
public:
    VextilCameraSource();
    ~VextilCameraSource() override;

    void start() override;
    void stop() override;
    bool isRunning() const override;
    QString description() const override;
    bool isAvailable() const override { return !m_device.isNull(); }

    /// The device the toolkit uses, or a null device when there is none.
    static QCameraDevice chooseDevice();

private:
    QCameraDevice m_device;
    std::unique_ptr<QMediaCaptureSession> m_session;
    std::unique_ptr<QCamera> m_camera;
    std::unique_ptr<QVideoSink> m_sink;
};
