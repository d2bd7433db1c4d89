#pragma once

#include <QRectF>
#include <QSizeF>

#include <VextilToolkit/VextilToolkitExport.h>

/// The toolkit's screens are drawn for a phone held upright. In a window of another shape (a
/// landscape desktop window, a phone turned sideways, a very tall pane) each screen lays itself
/// out in the largest region of a phone's proportions centred in the window, and shows its
/// background beyond it; that region stands for the screen in every proportional layout rule.
class VEXTIL_EXPORT VextilPortraitRegion {
public:
    /// Narrowest proportions kept (width / height): the tallest phones, 9:21.
    static constexpr double kNarrowest = 9.0 / 21.0;
    /// Widest proportions kept: 3:4, a tablet held upright.
    static constexpr double kWidest = 3.0 / 4.0;
    /// Widest proportions of the camera view inside a screen: wider, the face frame, drawn to
    /// the view's width, would lose its top and bottom.
    static constexpr double kWidestCameraView = 0.9;

    /// The region of a window of `area`: the whole window when its proportions lie between the
    /// two limits, otherwise the largest centred rectangle at the nearer limit. Empty for an
    /// empty window.
    static QRectF of(QSizeF area, double narrowest = kNarrowest, double widest = kWidest);
};
