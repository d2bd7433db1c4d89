#include "camera/VextilCameraSource.h"

#include <VextilToolkit/VextilImageBuffer.h>

#include "camera/VextilCameraFormatChoice.h"
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
    const QList<QCameraFormat> formats = m_device.videoFormats();
    QList<VextilCameraFormatChoice::Format> offered;
    for (const QCameraFormat &format : formats)
        offered.append({format.resolution(), format.maxFrameRate(),
                        VextilVideoFrameMapping::isDirectFormat(format.pixelFormat())});
    if (const int chosen = VextilCameraFormatChoice::choose(offered); chosen >= 0)
        m_camera->setCameraFormat(formats[chosen]);
    if (m_camera->isFocusModeSupported(QCamera::FocusModeAuto))
        m_camera->setFocusMode(QCamera::FocusModeAuto);
    m_session = std::make_unique<QMediaCaptureSession>();
    m_sink = std::make_unique<QVideoSink>();
    m_session->setCamera(m_camera.get());
    m_session->setVideoSink(m_sink.get());
    // Handed on as it is, on whatever thread the sink delivers from: the frame is mapped and
    // copied only if the capture keeps it.
    QObject::connect(m_sink.get(), &QVideoSink::videoFrameChanged, m_sink.get(), [this](const QVideoFrame &frame) {
        deliver(VextilCameraFrame(frame.size(), [frame] {
            const VextilVideoFrameMapping mapping(frame);
            return VextilImageBuffer::imageFromSampleBuffer(mapping.sampleBuffer());
        }, int(frame.rotationAngle()), frame.mirrored()));
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
