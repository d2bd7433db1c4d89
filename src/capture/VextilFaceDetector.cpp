#include "VextilToolkit/VextilFaceDetector.h"

#include "VextilToolkit/VextilCascadeFaceDetector.h"

VextilFaceDetector::~VextilFaceDetector() = default;

std::shared_ptr<VextilFaceDetector> VextilFaceDetector::createDefault()
{
    return std::make_shared<VextilCascadeFaceDetector>();
}
