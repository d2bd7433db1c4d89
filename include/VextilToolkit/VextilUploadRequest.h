#pragma once

#include <VextilToolkit/VextilJsonValue.h>
#include <VextilToolkit/VextilToolkitExport.h>
#include <VextilToolkit/VextilUploadTypes.h>

#include <QByteArray>
#include <QImage>
#include <QList>
#include <QString>

#include <optional>
#include <utility>

/// One image file of an upload.
struct VextilFilePart {
    QString name;     ///< "file_N.jpeg", N counting from 1 across the upload
    QByteArray data;  ///< JPEG bytes
};

/// The metadata form field of an upload.
struct VextilMetadataField {
    QString name;    ///< always "META_INFOS"
    QString values;  ///< the metadata as pretty-printed JSON text
};

/// Request header fields, in the order they are sent.
using VextilHeaderFields = QList<std::pair<QByteArray, QByteArray>>;

/// What an upload is built from: a snapshot of the capture store.
struct VextilUploadContent {
    QImage documentFront;
    QImage documentBack;
    VextilDocumentType documentType = VextilDocumentTypeUnspecified;
    std::shared_ptr<QList<QImage>> faceImages;
    std::shared_ptr<QList<QImage>> faceSmileImages;
};

/// Builds the bytes of an upload: file list, JSON metadata, multipart body and headers. Pure
/// functions of their arguments (and a random boundary); nothing here touches the network.
class VEXTIL_EXPORT VextilUploadRequest {
public:
    /// The JPEG files the data type selects, documents first, then neutral and smiling faces;
    /// nothing when a required image or face array is missing. An empty list is not missing.
    static std::optional<QList<VextilFilePart>> files(const VextilUploadContent &content, VextilDataType dataType);
    /// The metadata describing the files the same rules select; never fails.
    static VextilJsonValue metaInfo(const VextilUploadContent &content, VextilDataType dataType);
    /// One entry of the metadata's "files" array.
    static VextilJsonValue fileInfo(const QString &name, const QString &category, const QString &subcategory,
                                    const QString &tag);
    /// "----Boundary" followed by a fresh upper-case UUID.
    static QString boundary();
    /// The multipart/form-data body: the metadata part, then one part per file.
    static QByteArray body(const VextilMetadataField &metadata, const QList<VextilFilePart> &files,
                           const QString &boundary);
    /// Content-Type, Authorization (the key as it is) and Cache-Control.
    static VextilHeaderFields headers(const QString &authKey, const QString &boundary);

    /// JPEG quality of document images (of 100).
    static constexpr int kDocumentQuality = 90;
    /// JPEG quality of face images (of 100).
    static constexpr int kFaceQuality = 100;
};
