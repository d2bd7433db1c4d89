#pragma once

#include <VextilToolkit/VextilFaceDetector.h>

#include <QList>

#include <functional>

// A detector that answers from a script, one answer per call, so that tests choose exactly
// what the face capture model sees in each frame.
class ScriptedFaceDetector : public VextilFaceDetector {
public:
    QList<VextilFaceFeature> featuresInImage(const QImage &) override
    {
        ++calls;
        if (duringDetection)
            duringDetection();
        return next;
    }

    QList<VextilFaceFeature> next;          // answer to the next call (kept until changed)
    std::function<void()> duringDetection;  // runs inside a detection, e.g. to feed another frame
    int calls = 0;
};
