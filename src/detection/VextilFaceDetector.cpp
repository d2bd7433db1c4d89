#include <VextilToolkit/VextilFaceDetector.h>

#include "detection/VextilCascadeFaceDetector.h"
#include "detection/VextilLearnedFaceDetector.h"

#include <atomic>

namespace {
std::atomic<VextilFaceDetectorKind> preferred{VextilFaceDetectorKind::Learned};
}

VextilFaceDetector::~VextilFaceDetector() = default;

void VextilFaceDetector::setPreferredKind(VextilFaceDetectorKind kind) { preferred = kind; }
VextilFaceDetectorKind VextilFaceDetector::preferredKind() { return preferred; }

std::shared_ptr<VextilFaceDetector> VextilFaceDetector::createDefault()
{
    if (preferred == VextilFaceDetectorKind::Cascade)
        return std::make_shared<VextilCascadeFaceDetector>();
    return VextilLearnedFaceDetector::createOrFallBack(std::make_shared<VextilLearnedFaceDetector>());
}
