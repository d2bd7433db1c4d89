#include "camera/VextilCameraSource.h"

#include <VextilToolkit/VextilImageBuffer.h>

#include "camera/VextilVideoFrameMapping.h"

#include <QCamera>
#include <QMediaCaptureSession>
#include <QMediaDevices>
#include <QVideoSink>

QCameraDevice VextilCameraSource::chooseDevice()
{
    const QList<QCameraDevice> devices = QMediaDevices::videoInputs();
    QCameraDevice front;
    for (const QCameraDevice &device : devices)
        if (device.position() == QCameraDevice::FrontFace)
            front = device;  // a later front device replaces an earlier one
    return front.isNull() ? QMediaDevices::defaultVideoInput() : front;
}

VextilCameraSource::VextilCameraSource() : m_device(chooseDevice())
{
    if (m_device.isNull())
        return;
    m_camera = std::make_unique<QCamera>(m_device);
    // The highest-resolution format the device offers, as a high-quality preset would pick.
    QCameraFormat best;
    for (const QCameraFormat &format : m_device.videoFormats())
        if (best.isNull() || format.resolution().width() * format.resolution().height()
                                 > best.resolution().width() * best.resolution().height())
            best = format;
    if (!best.isNull())
        m_camera->setCameraFormat(best);
    if (m_camera->isFocusModeSupported(QCamera::FocusModeAuto))
        m_camera->setFocusMode(QCamera::FocusModeAuto);
    m_session = std::make_unique<QMediaCaptureSession>();
    m_sink = std::make_unique<QVideoSink>();
    m_session->setCamera(m_camera.get());
    m_session->setVideoSink(m_sink.get());
    // Converted once, here, on whatever thread the sink delivers from.
    QObject::connect(m_sink.get(), &QVideoSink::videoFrameChanged, m_sink.get(), [this](const QVideoFrame &frame) {
        const VextilVideoFrameMapping mapping(frame);
        const QImage image = VextilImageBuffer::imageFromSampleBuffer(mapping.sampleBuffer());
        if (!image.isNull())
            deliver(image);
    }, Qt::DirectConnection);
}

VextilCameraSource::~VextilCameraSource() { stop(); }

void VextilCameraSource::start()
{
    if (m_camera)
        m_camera->start();
}

void VextilCameraSource::stop()
{
    if (m_camera)
        m_camera->stop();
}

bool VextilCameraSource::isRunning() const { return m_camera && m_camera->isActive(); }

QString VextilCameraSource::description() const
{
    return m_device.isNull() ? QStringLiteral("no camera") : QStringLiteral("camera: ") + m_device.description();
}
