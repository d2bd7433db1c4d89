#pragma once

#include <QtGlobal>

/// The face capture model's state.
enum VextilFaceCaptureState : quint64 {
    VextilFaceCaptureStateLookingForFace = 0,   ///< waiting for a near, non-smiling face
    VextilFaceCaptureStateCollectingFaces = 1,  ///< collecting neutral images, one a second at most
    VextilFaceCaptureStateAwaitingSmile = 2,    ///< five neutral images held; collecting smiles
};
