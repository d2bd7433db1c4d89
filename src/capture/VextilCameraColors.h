#pragma once

#include <QColor>

/// The camera screen's fixed colours, whatever the colour scheme says; both faces draw with them.
struct VextilCameraColors {
    /// The progress bar's track and fill.
    static QColor progressTrack() { return QColor::fromRgbF(1.0f, 0.98f, 0.98f, 0.2f); }
    static QColor progressFill() { return QColor::fromRgbF(0.0f, 0.59f, 0.53f, 1.0f); }
    /// The "SMILE!" pop-up's text and border, and its box.
    static QColor popupText() { return QColor::fromRgbF(0.0f, 0.59f, 0.53f, 1.0f); }
    static QColor popupBackground() { return QColor::fromRgbF(1.0f, 1.0f, 1.0f, 0.7f); }
};
