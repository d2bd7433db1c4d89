#pragma once

#include <VextilToolkit/VextilError.h>
#include <VextilToolkit/VextilToolkitExport.h>
#include <VextilToolkit/VextilUploadTypes.h>

#include <QImage>
#include <QList>
#include <QMutex>
#include <QObject>
#include <QString>
#include <QVariantMap>

#include <memory>
#include <optional>

/// The one place where everything to be uploaded waits: captured images, the document type,
/// the host's key, and after an upload the answer or the failure. A process-wide singleton.
///
/// Image arrays are kept by reference, so a later change to an array by its owner shows here;
/// a reset sets a field to null, never to an empty array. Every accessor may be called from
/// any thread; the arrays' contents are not guarded once handed over.
class VEXTIL_EXPORT VextilRepository : public QObject {
    Q_OBJECT
public:
    /// Images shared by reference; a null pointer is null, not empty.
    using ImageArray = std::shared_ptr<QList<QImage>>;

    /// The store, created on first use (thread-safely) and never destroyed.
    static VextilRepository *sharedInstance();

    /// Front side of an identity document; a null image when none is held.
    QImage documentFrontImage() const;
    void setDocumentFrontImage(const QImage &image);
    /// Back side of an identity document; a null image when none is held.
    QImage documentBackImage() const;
    void setDocumentBackImage(const QImage &image);
    /// Kind of document the two images show; 0 until set.
    VextilDocumentType documentType() const;
    void setDocumentType(VextilDocumentType type);
    /// Neutral face images of the last capture, in capture order; null when none.
    ImageArray faceImages() const;
    void setFaceImages(ImageArray images);
    /// Smiling face images of the last capture, in capture order; null when none.
    ImageArray faceSmileImages() const;
    void setFaceSmileImages(ImageArray images);
    /// The host's authentication key, sent verbatim with uploads; empty optional when unset.
    std::optional<QString> authKey() const;
    void setAuthKey(std::optional<QString> key);
    /// Fraction of the current upload's body sent, 0.0 to 1.0.
    double progress() const;
    void setProgress(double progress);
    /// Decoded answer of the last successful upload (or the test-mode answer).
    std::optional<QVariantMap> resultData() const;
    void setResultData(std::optional<QVariantMap> data);
    /// Toolkit error of the last failed transfer.
    std::optional<VextilError> error() const;
    void setError(std::optional<VextilError> error);

    /// Same as documentFrontImage().
    QImage getDocumentFrontImage() const { return documentFrontImage(); }
    /// Same as documentBackImage().
    QImage getDocumentBackImage() const { return documentBackImage(); }
    /// Same as faceImages().
    ImageArray getFaceImages() const { return faceImages(); }
    /// Same as faceSmileImages(); the doubled "s" is part of the API.
    ImageArray getFaceSmileImagess() const { return faceSmileImages(); }
    /// Same as progress().
    double getProgress() const { return progress(); }

    /// Whether a document front image is held.
    bool hasDocumentFrontImage() const;
    /// Whether a document back image is held.
    bool hasDocumentBackImage() const;
    /// Whether both document sides are held.
    bool hasAllDocument() const;

    /// Drops the document front image.
    void resetDocumentFront();
    /// Drops the document back image.
    void resetDocumentBack();
    /// Drops both document images, back first.
    void resetDocumentImages();
    /// Drops the smiling, then the neutral face images.
    void resetFaceImages();
    /// Drops all images; leaves the key, document type, answer, error and progress alone.
    void resetAllImages();

private:
    VextilRepository() = default;

    // Keeps each field's reads and writes whole across the capture, GUI and network threads.
    mutable QMutex m_mutex;
    QImage m_documentFrontImage;
    QImage m_documentBackImage;
    VextilDocumentType m_documentType = VextilDocumentTypeUnspecified;
    ImageArray m_faceImages;
    ImageArray m_faceSmileImages;
    std::optional<QString> m_authKey;
    double m_progress = 0.0;
    std::optional<QVariantMap> m_resultData;
    std::optional<VextilError> m_error;
};
