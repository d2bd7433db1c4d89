#include <VextilToolkit/VextilFaceCameraControllerDelegate.h>

// Defined here so that the interface's type information lives in the toolkit alone, and a
// delegate made by the host casts to it whatever the platform's rules for merging it.
VextilFaceCameraControllerDelegate::~VextilFaceCameraControllerDelegate() = default;
