#pragma once

#include <QList>

/// Figures of a camera screen's frame analysis since its camera started.
struct VextilCaptureStats {
    int delivered = 0;         ///< frames the camera handed to the analysis
    int analysed = 0;          ///< frames the face capture model ran on
    int dropped = 0;           ///< frames replaced by a newer one before they were analysed
    QList<double> analysisMs;  ///< analysis time of every analysed frame, in milliseconds
};
