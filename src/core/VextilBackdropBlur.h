#pragma once

#include <VextilToolkit/VextilToolkitExport.h>

#include <QImage>

/// What lies beneath the tutorial, blurred as both faces show it. Exported for the Qt Quick
/// module; not part of the toolkit's API.
class VEXTIL_EXPORT VextilBackdropBlur {
public:
    /// The blur's radius in device-independent pixels.
    static constexpr double kRadius = 24;
    /// A blurred copy of a picture (any format; the copy is ARGB32 premultiplied, same size and
    /// device pixel ratio).
    static QImage blurred(const QImage &picture);
};
