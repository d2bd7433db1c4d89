#pragma once

#include <VextilToolkit/VextilFaceDetector.h>

#include <QList>

#include <functional>
#include <optional>

// A detector that answers from a script, one answer per call, so that tests choose exactly
// what the face capture model sees in each frame.
class ScriptedFaceDetector : public VextilFaceDetector {
public:
    QList<VextilFaceFeature> featuresInImage(const QImage &) override
    {
        ++calls;
        if (announceFaces) {
            // As the learned detector: the faces first, their smiles unjudged.
            QList<VextilFaceFeature> unjudged = foundFirst.value_or(next);
            for (VextilFaceFeature &face : unjudged) {
                face.hasSmile = false;
                face.smileScore.reset();
            }
            if (!unjudged.isEmpty())
                facesFound(unjudged);
        }
        if (duringDetection)
            duringDetection();
        return next;
    }

    QList<VextilFaceFeature> next;          // answer to the next call (kept until changed)
    std::function<void()> duringDetection;  // runs inside a detection, after the faces are announced
    bool announceFaces = false;             // hand the faces to the faces-found handler first
    std::optional<QList<VextilFaceFeature>> foundFirst;  // what is announced, when not `next`
    int calls = 0;
};
