#pragma once

#include <QList>

/// Figures of a camera screen's frame analysis since its camera started.
struct VextilCaptureStats {
    int delivered = 0;         ///< frames the camera handed to the analysis
    int analysed = 0;          ///< frames the face capture model ran on
    int dropped = 0;           ///< frames replaced by a newer one before they were analysed
    QList<double> analysisMs;  ///< analysis time of every analysed frame, in milliseconds
    /// For each new instruction: from the delivery of the frame that made it due to the screen's
    /// first paint after it, in milliseconds.
    QList<double> instructionDelayMs;
};
