#pragma once

#include <VextilToolkit/VextilError.h>
#include <VextilToolkit/VextilToolkitExport.h>
#include <VextilToolkit/VextilUploadRequest.h>
#include <VextilToolkit/VextilUploadTypes.h>

#include <QImage>
#include <QList>
#include <QMutex>
#include <QObject>
#include <QString>
#include <QVariantMap>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

class VextilUploadSession;
struct VextilUploadOutcome;

/// The one place where everything to be uploaded waits: captured images, the document type,
/// the host's key, and after an upload the answer or the failure. A process-wide singleton.
///
/// Image arrays are kept by reference, so a later change to an array by its owner shows here;
/// a reset sets a field to null, never to an empty array. Every accessor may be called from
/// any thread; the arrays' contents are not guarded once handed over.
///
/// It also builds and sends uploads: sendDataWithDataType() posts the stored images over HTTPS
/// to the upload endpoint (see README: a deployment setting with a run-time override).
class VEXTIL_EXPORT VextilRepository : public QObject {
    Q_OBJECT
public:
    /// Images shared by reference; a null pointer is null, not empty.
    using ImageArray = std::shared_ptr<QList<QImage>>;
    /// Receives an upload's answer (a JSON object) or its error; exactly once per send.
    using SendCallback = std::function<void(std::optional<QVariantMap> answer, std::optional<VextilError> error)>;

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
    /// Network session of the most recent upload (opaque); null before the first real transfer.
    /// A send replaces it without stopping the earlier transfer; it may be let go of on any thread.
    std::shared_ptr<VextilUploadSession> session() const;
    void setSession(std::shared_ptr<VextilUploadSession> session);

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

    /// Uploads the images the data type selects with their metadata. Fails at once with 420
    /// (no key) or 424 (images missing); with the "isTest" setting true, answers a fixed token
    /// synchronously and sends nothing. Otherwise the callback runs on the upload's network
    /// thread: the answer on HTTP 200, else 422 (402, 502), 1500 (other statuses, redirects
    /// included: they are not followed) or 423 (transfer failed, or the server refused by the
    /// certificate check). The request goes out at most once: a connection that closes or times
    /// out before a whole answer ends the send with 423, never with a silent re-send, and the
    /// images stay here for the host's own retry.
    void sendDataWithDataType(VextilDataType dataType, SendCallback callBack);

    /// The JPEG files of an upload; nothing when a required image is missing.
    std::optional<QList<VextilFilePart>> mountImagesDataWithDataType(VextilDataType dataType) const;
    /// The metadata of an upload; never fails.
    VextilJsonValue mountMetaInfoWithDataType(VextilDataType dataType) const;
    /// One entry of the metadata's "files" array.
    static VextilJsonValue createDictionaryForFileInfo(const QString &fileInfo, const QString &category,
                                                       const QString &subcategory, const QString &tag)
    {
        return VextilUploadRequest::fileInfo(fileInfo, category, subcategory, tag);
    }
    /// Pretty-printed JSON text of a metadata dictionary.
    static QString jsonStringFromDict(const VextilJsonValue &dict) { return QString::fromUtf8(dict.toPrettyJson()); }
    /// A fresh multipart boundary.
    static QString generateBoundary() { return VextilUploadRequest::boundary(); }
    /// The multipart/form-data body of an upload.
    static QByteArray mountBodyDataWithMetadata(const VextilMetadataField &metadata,
                                                const QList<VextilFilePart> &filesData, const QString &boundary)
    {
        return VextilUploadRequest::body(metadata, filesData, boundary);
    }
    /// The request's header fields.
    static VextilHeaderFields generateHeaderWithAuthKey(const QString &authKey, const QString &boundary)
    {
        return VextilUploadRequest::headers(authKey, boundary);
    }
    /// The upload service's host, "host" or "host:port" (the scheme and path stay https and
    /// /file); empty, the build's default. The library never takes it from the environment.
    void setUploadHost(const QString &host);
    QString uploadHost() const;
    /// Certificate authorities to trust for the upload besides the system's, in PEM (one or more
    /// certificates per entry); an empty list trusts the system's alone. False, and nothing
    /// changed, when an entry holds no certificate.
    bool setExtraCertificateAuthorities(const QList<QByteArray> &pemCertificates);

    /// Public keys the upload server's verified chain must hold one of: each the raw 32-byte
    /// SHA-256 of a DER SubjectPublicKeyInfo (the leaf's, an intermediate's or a trusted root's,
    /// sent by the server or not). The chain is rebuilt from the leaf by signatures up to a
    /// trusted authority; certificates merely sent along do not count. A server whose chain holds
    /// none is refused (423) before any request byte is sent. An empty list means no pinning.
    /// False, and nothing changed, when a digest is not 32 bytes.
    bool setPinnedPublicKeys(QList<QByteArray> sha256Digests);
    /// How long a send may go with no byte moving either way before it ends with 423; each send
    /// reads it as it starts. Zero or less restores the default, 60 s.
    void setTransferTimeout(std::chrono::milliseconds timeout);
    std::chrono::milliseconds transferTimeout() const;

    /// The certificate text the upload refuses to talk to: the toolkit's "_vextilco.crt" resource
    /// without its marker lines; nothing when the resource cannot be read.
    static std::optional<QString> getLocalCertificate();

private:
    VextilRepository() = default;
    VextilUploadContent content() const;
    void finishTransfer(const VextilUploadOutcome &outcome, const SendCallback &callBack);

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
    std::shared_ptr<VextilUploadSession> m_session;
};
