#include <VextilToolkit/VextilFrameSource.h>

#include <VextilToolkit/VextilVideoFileSource.h>

#include "camera/VextilCameraSource.h"

VextilFrameSource::~VextilFrameSource() = default;

std::unique_ptr<VextilFrameSource> VextilFrameSource::createDefault()
{
    if (!qEnvironmentVariableIsEmpty("VEXTIL_CAMERA_FILE"))
        return std::make_unique<VextilVideoFileSource>(qEnvironmentVariable("VEXTIL_CAMERA_FILE"),
                                                       qEnvironmentVariableIntValue("VEXTIL_CAMERA_LOOP") != 0);
    return std::make_unique<VextilCameraSource>();
}
