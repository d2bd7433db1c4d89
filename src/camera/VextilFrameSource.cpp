#include <VextilToolkit/VextilFrameSource.h>

#include "camera/VextilCameraSource.h"

VextilFrameSource::~VextilFrameSource() = default;

std::unique_ptr<VextilFrameSource> VextilFrameSource::createDefault(const QString &camera)
{
    // Always the live camera: a stand-in is the host's choice in code, never the environment's,
    // since a recorded video in the camera's place would pass the capture's liveness check.
    return std::make_unique<VextilCameraSource>(camera);
}

QStringList VextilFrameSource::cameraNames()
{
    QStringList names;
    for (const QCameraDevice &device : VextilCameraSource::cameras())
        names.append(device.description());
    return names;
}
