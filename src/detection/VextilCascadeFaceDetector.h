#pragma once

#include <VextilToolkit/VextilFaceDetector.h>

#include <QList>
#include <QString>

#include <memory>

/// Face and smile detector on OpenCV's Haar cascades, compiled into the toolkit.
///
/// Faces: a grey copy of the image, reduced by a whole factor to about `workingWidth` pixels and
/// equalised, is searched upright; when no upright face is confident, tilted copies are searched
/// too and the pass with the strongest face wins. A hit whose centre is not mostly skin-coloured
/// is dropped (badges and posters fool the cascade). Faces smaller than `minFaceFraction` of the
/// width are skipped: they are too far away to be captured anyway.
///
/// Smiles: the smile cascade alone fires on many neutral faces, so a smile needs two pieces of
/// evidence in the mouth region of the face crop: a strong, clustered smile-cascade response
/// and visible teeth (bright, unsaturated pixels). A false smile costs the user collected
/// images; a missed one only asks for a wider smile, so the thresholds favour precision.
class VextilCascadeFaceDetector : public VextilFaceDetector {
public:
    /// Tuning of the detector; the defaults were chosen on labelled portraits.
    struct Settings {
        int workingWidth = 200;          ///< width of the reduced copy faces are searched in
        double scaleFactor = 1.2;        ///< step between searched face sizes
        int minNeighbors = 2;            ///< overlapping hits a face needs
        double minFaceFraction = 0.3;    ///< smallest face, as a fraction of the image width
        int confidentNeighbors = 3;      ///< an upright face this strong skips the tilted passes
        double minSkinFraction = 0.10;   ///< share of the face's centre that must be skin-coloured
        QList<double> tiltAngles{-20, 20, -35, 35};  ///< degrees tried when upright is not confident
        int smileFaceWidth = 120;        ///< face crops are scaled to this width for smile search
        int smileMinScore = 45;          ///< clustered smile-cascade hits a smile needs
        double smileMinTeeth = 0.10;     ///< fraction of mouth pixels that must look like teeth
    };

    /// Everything measured about one face, before the smile thresholds are applied.
    struct FaceAnalysis {
        QRectF bounds;             ///< image pixels, origin bottom left
        int neighbors = 0;         ///< face-cascade hits behind this face (its confidence)
        double angle = 0;          ///< tilt of the pass that found it, in degrees
        double skinFraction = 0;   ///< share of the face's centre that is skin-coloured
        int smileScore = 0;        ///< clustered smile-cascade hits in the mouth region
        double teethFraction = 0;  ///< fraction of mouth pixels bright and unsaturated
    };

    /// Loads the cascades compiled into the toolkit.
    VextilCascadeFaceDetector();
    /// Loads the built-in cascades with other settings.
    explicit VextilCascadeFaceDetector(const Settings &settings);
    /// Loads cascades from files or Qt resource paths (":/..."). A model that cannot be read is
    /// reported once as a warning; the detector then finds nothing.
    VextilCascadeFaceDetector(const QString &faceCascadePath, const QString &smileCascadePath);
    /// The same with other settings.
    VextilCascadeFaceDetector(const QString &faceCascadePath, const QString &smileCascadePath,
                              const Settings &settings);
    ~VextilCascadeFaceDetector() override;

    QList<VextilFaceFeature> featuresInImage(const QImage &image) override;

    /// Faces with their raw evidence, largest first; featuresInImage applies the thresholds.
    QList<FaceAnalysis> analyse(const QImage &image);
    /// Whether the smile thresholds of these settings call this face smiling.
    static bool isSmile(const FaceAnalysis &face, const Settings &settings);

    /// Whether both cascades were loaded.
    bool isLoaded() const;
    /// Why loading failed; empty when it succeeded.
    QString errorString() const;
    /// The settings in use.
    const Settings &settings() const;

    /// Resource path of the built-in face cascade.
    static QString builtInFaceCascade();
    /// Resource path of the built-in smile cascade.
    static QString builtInSmileCascade();

private:
    struct Private;
    std::unique_ptr<Private> d;
};
