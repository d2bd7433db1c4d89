#include "camera/VextilCameraSource.h"

#include "camera/VextilCameraFormatChoice.h"
#include "camera/VextilVideoFrameMapping.h"

#include <QCamera>
#include <QMediaCaptureSession>
#include <QMediaDevices>
#include <QVideoSink>

#include <algorithm>

namespace {
// One camera listed twice has two ids but the same name, position and formats.
bool sameCamera(const QCameraDevice &a, const QCameraDevice &b)
{
    return a.description() == b.description() && a.position() == b.position() && a.videoFormats() == b.videoFormats();
}
}  // namespace

QList<QCameraDevice> VextilCameraSource::cameras()
{
    QList<QCameraDevice> unique;
    for (const QCameraDevice &device : QMediaDevices::videoInputs())
        if (std::none_of(unique.begin(), unique.end(),
                         [&](const QCameraDevice &seen) { return sameCamera(seen, device); }))
            unique.append(device);
    return unique;
}

QCameraDevice VextilCameraSource::chooseDevice(const QString &preferred)
{
    const QList<QCameraDevice> devices = cameras();
    if (devices.isEmpty())
        return {};
    const QCameraDevice system = QMediaDevices::defaultVideoInput();
    QCameraDevice front, fallback = devices.first();
    for (const QCameraDevice &device : devices) {
        if (!preferred.isEmpty() && (device.description() == preferred || QString::fromUtf8(device.id()) == preferred))
            return device;
        if (device.position() == QCameraDevice::FrontFace)
            front = device;  // a later front device replaces an earlier one
        if (sameCamera(device, system))
            fallback = device;
    }
    return front.isNull() ? fallback : front;
}

VextilCameraSource::VextilCameraSource(QString preferred)
    : m_preferred(std::move(preferred)), m_device(chooseDevice(m_preferred))
{
}

VextilCameraSource::~VextilCameraSource() { stop(); }

void VextilCameraSource::open()
{
    m_sink = std::make_unique<QVideoSink>();
    m_session = std::make_unique<QMediaCaptureSession>();
    m_camera = std::make_unique<QCamera>(m_device);
    m_session->setVideoSink(m_sink.get());
    // The camera joins its session before its format is set: on Qt 6.4's GStreamer backend,
    // setting the format of a camera with no session can block for good.
    m_session->setCamera(m_camera.get());
    const QList<QCameraFormat> formats = m_device.videoFormats();
    QList<VextilCameraFormatChoice::Format> offered;
    for (const QCameraFormat &format : formats)
        offered.append({format.resolution(), format.maxFrameRate(),
                        VextilVideoFrameMapping::isDirectFormat(format.pixelFormat())});
    if (const int chosen = VextilCameraFormatChoice::choose(offered); chosen >= 0)
        m_camera->setCameraFormat(formats[chosen]);
    if (m_camera->isFocusModeSupported(QCamera::FocusModeAuto))
        m_camera->setFocusMode(QCamera::FocusModeAuto);
    // Handed on as it is, on whatever thread the sink delivers from: the frame is mapped and
    // converted only if the capture takes it, to a small copy for analysis and to a whole image
    // only if the capture keeps it.
    QObject::connect(
        m_sink.get(), &QVideoSink::videoFrameChanged, m_sink.get(),
        [this](const QVideoFrame &frame) { deliver(VextilVideoFrameMapping::cameraFrame(frame)); },
        Qt::DirectConnection);
}

void VextilCameraSource::start()
{
    if (m_camera)
        return;
    m_device = chooseDevice(m_preferred);  // the camera may have been plugged in or swapped since
    if (m_device.isNull())
        return;
    open();
    m_camera->start();
}

void VextilCameraSource::stop()
{
    if (!m_camera)
        return;
    // Closing the session stops its stream and waits for the frame being delivered.
    QObject::disconnect(m_sink.get(), nullptr, m_sink.get(), nullptr);
    m_camera->stop();
    m_session.reset();
    m_camera.reset();
    m_sink.reset();
}

bool VextilCameraSource::isRunning() const { return m_camera && m_camera->isActive(); }

bool VextilCameraSource::isAvailable() const { return !m_device.isNull() || !chooseDevice(m_preferred).isNull(); }

QString VextilCameraSource::description() const
{
    return m_device.isNull() ? QStringLiteral("no camera") : QStringLiteral("camera: ") + m_device.description();
}
