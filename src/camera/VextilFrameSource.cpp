#include <VextilToolkit/VextilFrameSource.h>

#include "camera/VextilCameraSource.h"

VextilFrameSource::~VextilFrameSource() = default;

std::unique_ptr<VextilFrameSource> VextilFrameSource::createDefault()
{
    // Always the live camera: a stand-in is the host's choice in code, never the environment's,
    // since a recorded video in the camera's place would pass the capture's liveness check.
    return std::make_unique<VextilCameraSource>();
}
