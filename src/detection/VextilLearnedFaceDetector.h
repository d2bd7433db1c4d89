#pragma once

#include <VextilToolkit/VextilFaceDetector.h>

#include "detection/VextilBlazeFace.h"
#include "detection/VextilGreyExpressionNet.h"
#include "detection/VextilSceneContinuity.h"

#include <functional>
#include <memory>
#include <optional>

/// Face and smile detector on two learned networks: faces from BlazeFace (see VextilBlazeFace),
/// smiles from the grey expression network (see VextilGreyExpressionNet) on BlazeFace's own face
/// box. smileScore is the log-odds of "happy"; a face smiles when it is above `smileThreshold`.
/// The bounds reported are faceBounds(), forehead to chin. How well it does on the labelled
/// photos is in the README's detection section.
///
/// In stream mode, on a camera stream with one face, the two networks take turns: one frame
/// finds the face and keeps the smile judged on the frame before, the next judges the smile on
/// the face found the frame before. Each answer is at most one frame old, for half the work.
/// Any other image (another scene, size or number of faces, or a face that moved away) gets
/// both networks, and so does every image in still mode; there the faces found are handed to
/// the faces-found handler before the expression network runs.
class VextilLearnedFaceDetector : public VextilFaceDetector {
public:
    /// The default smile threshold, in log-odds: "happy" at least twice as likely as all
    /// other expressions together. Taken alone, a face read at even odds is as often a talking
    /// mouth or a smirk as a smile.
    static constexpr float kSmileLogOdds = 0.69f;

    /// Loads both networks compiled into the toolkit; check isLoaded().
    explicit VextilLearnedFaceDetector(float smileThreshold = kSmileLogOdds);
    /// Loads the networks from files or Qt resource paths.
    VextilLearnedFaceDetector(const QString &faceModel, const QString &expressionModel, const QString &expressionWeights,
                              float smileThreshold = kSmileLogOdds);

    /// `learned` when its networks loaded; otherwise the cascade detector, after one warning.
    static std::shared_ptr<VextilFaceDetector> createOrFallBack(std::shared_ptr<VextilLearnedFaceDetector> learned);
    ~VextilLearnedFaceDetector() override;

    QList<VextilFaceFeature> featuresInImage(const QImage &image) override;
    /// Lets both networks go (their weights and layer outputs, some 7 MiB); the next image loads
    /// them again, as the constructor did.
    void releaseResources() override;

    /// Whether both networks were loaded.
    bool isLoaded() const { return m_error.isEmpty(); }
    /// Why loading failed; empty when both networks loaded.
    QString errorString() const { return m_error; }
    /// A face's bounds as face detectors usually report them, forehead to chin: a square 2.5
    /// times the mean of the eye-to-eye and eyes-to-mouth distances, centred between the eyes
    /// and the mouth and raised by a tenth of its side. Unlike BlazeFace's own box, it follows
    /// the key points on turned and tilted heads. Image pixels, origin top left.
    static QRectF faceBounds(const VextilBlazeFace::Face &face);
    /// The smile log-odds of each face found, largest face first.
    QList<float> smileScores(const QImage &image);

private:
    // The face of the last image, when it was the only one.
    struct Tracked {
        VextilBlazeFace::Face face;
        float smile = 0;  // log-odds
        bool boxIsNewer = false;  // found after its smile was judged
    };
    struct Networks;
    // The networks, loaded again after a release; null when they cannot be.
    Networks *networks();
    float smile(const QImage &image, const VextilBlazeFace::Face &face);
    VextilFaceFeature feature(const Tracked &tracked, const QImage &image) const;
    QList<VextilFaceFeature> fullPass(const QImage &image);

    std::function<std::unique_ptr<Networks>()> m_load;
    std::unique_ptr<Networks> m_networks;
    QString m_error;
    float m_smileThreshold;
    VextilSceneContinuity m_scene;
    std::optional<Tracked> m_tracked;
};
