#pragma once

#include <VextilToolkit/VextilFaceFeature.h>
#include <VextilToolkit/VextilToolkitExport.h>

#include <QImage>
#include <QList>

#include <functional>
#include <memory>

/// The detectors the toolkit ships.
enum class VextilFaceDetectorKind {
    Learned,  ///< BlazeFace and a grey-scale smile classifier (the default)
    Cascade,  ///< OpenCV's Haar cascades with teeth evidence
};

/// Finds faces and smiles in an image. The face capture model calls it on the capture thread,
/// one image at a time; an implementation need not be thread-safe.
///
/// Two modes. In still mode (the default) every answer is about the image given, alone, in
/// whatever order images come. In stream mode, which the face capture model asks for, the
/// images are consecutive frames of one camera: a detector may then reuse work across frames,
/// so that an answer may be up to one frame old.
class VEXTIL_EXPORT VextilFaceDetector {
public:
    virtual ~VextilFaceDetector();

    /// Enters stream mode (true) or still mode (false). Detectors that never reuse work across
    /// images may ignore it.
    virtual void setStreamMode(bool stream);
    /// Lets go of working memory that the next featuresInImage() can build again (a learned
    /// detector's networks), once a capture has ended; called on the capture thread. Default: nothing.
    virtual void releaseResources();
    /// Whether setStreamMode(true) was called last.
    bool isStreamMode() const { return m_streamMode; }

    /// Faces in the image, the most prominent (largest) first; empty when there is none or the
    /// image is null. Implementations may throw; callers go through detect().
    virtual QList<VextilFaceFeature> featuresInImage(const QImage &image) = 0;
    /// featuresInImage() behind a boundary: whatever it throws is caught and logged (once per
    /// kind of failure), and the image counts as showing no face. What the face capture model calls.
    QList<VextilFaceFeature> detect(const QImage &image) noexcept;

    /// Receives the faces of an image as soon as they are found, before their smiles are judged
    /// (hasSmile false, no smileScore), from inside detect() on its thread. The face capture
    /// model sets it to tell the user sooner; one handler per detector.
    using FacesFoundHandler = std::function<void(const QList<VextilFaceFeature> &faces)>;
    void setFacesFoundHandler(FacesFoundHandler handler);

    /// The detector of the preferred kind. The learned one falls back to the cascade one, with
    /// one warning, when its models cannot be loaded.
    static std::shared_ptr<VextilFaceDetector> createDefault();
    /// Picks the kind every camera screen built afterwards uses; any thread.
    static void setPreferredKind(VextilFaceDetectorKind kind);
    static VextilFaceDetectorKind preferredKind();

protected:
    /// For detectors that judge smiles after finding faces: hands the faces found to the
    /// handler, if one is set, before the smiles are judged.
    void facesFound(const QList<VextilFaceFeature> &faces) const;

private:
    bool m_streamMode = false;
    FacesFoundHandler m_facesFound;
};
