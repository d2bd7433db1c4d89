#include <VextilToolkit/VextilUploadRequest.h>

#include <QBuffer>
#include <QUuid>

namespace {

bool selectsDocuments(VextilDataType type) { return type == VextilDataTypeDocument || type == VextilDataTypeDocumentAndFace; }
bool selectsFaces(VextilDataType type) { return type == VextilDataTypeFace || type == VextilDataTypeDocumentAndFace; }

QString fileName(qsizetype number) { return QStringLiteral("file_%1.jpeg").arg(number); }

QByteArray jpeg(const QImage &image, int quality)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "JPEG", quality);
    return bytes;
}

// The document sides a document type sends, front first; nothing when a required side is missing.
std::optional<QList<QImage>> documentImages(const VextilUploadContent &content)
{
    const QImage &front = content.documentFront, &back = content.documentBack;
    switch (content.documentType) {
    case VextilDocumentTypeCNH:
    case VextilDocumentTypeGeneric:
        return front.isNull() ? std::nullopt : std::optional(QList<QImage>{front});
    case VextilDocumentTypeRG:
    case VextilDocumentTypeGenericFrontBack:
        return front.isNull() || back.isNull() ? std::nullopt : std::optional(QList<QImage>{front, back});
    case VextilDocumentTypeUnspecified:
        if (front.isNull())
            return std::nullopt;
        return back.isNull() ? QList<QImage>{front} : QList<QImage>{front, back};
    }
    return QList<QImage>{};
}

// (sub-category, tag) of each document entry; type 1 names both sides without looking at them.
QList<std::pair<QString, QString>> documentEntries(const VextilUploadContent &content)
{
    const auto pair = [](const char *subcategory, const char *tag) {
        return std::pair(QString::fromLatin1(subcategory), QString::fromLatin1(tag));
    };
    switch (content.documentType) {
    case VextilDocumentTypeUnspecified:
        if (content.documentFront.isNull())
            return {};
        if (!content.documentBack.isNull())
            return {pair("rg", "front"), pair("rg", "back")};
        return {pair("cnh", "full")};
    case VextilDocumentTypeRG: return {pair("rg", "front"), pair("rg", "back")};
    case VextilDocumentTypeCNH: return {pair("cnh", "full")};
    case VextilDocumentTypeGeneric: return {pair("generic", "full")};
    case VextilDocumentTypeGenericFrontBack: return {pair("generic", "front"), pair("generic", "back")};
    }
    return {};
}

}  // namespace

std::optional<QList<VextilFilePart>> VextilUploadRequest::files(const VextilUploadContent &content,
                                                                VextilDataType dataType)
{
    QList<VextilFilePart> parts;
    const auto add = [&parts](const QImage &image, int quality) {
        parts.append({fileName(parts.size() + 1), jpeg(image, quality)});
    };
    if (selectsDocuments(dataType)) {
        const auto documents = documentImages(content);
        if (!documents)
            return std::nullopt;
        for (const QImage &image : *documents)
            add(image, kDocumentQuality);
    }
    if (selectsFaces(dataType)) {
        if (!content.faceSmileImages || !content.faceImages)
            return std::nullopt;
        for (const QImage &image : *content.faceImages)
            add(image, kFaceQuality);
        for (const QImage &image : *content.faceSmileImages)
            add(image, kFaceQuality);
    }
    return parts;
}

VextilJsonValue VextilUploadRequest::metaInfo(const VextilUploadContent &content, VextilDataType dataType)
{
    VextilJsonValue::Array entries;
    const auto add = [&entries](const QString &category, const QString &subcategory, const QString &tag) {
        entries.push_back(fileInfo(fileName(qsizetype(entries.size()) + 1), category, subcategory, tag));
    };
    if (selectsDocuments(dataType))
        for (const auto &[subcategory, tag] : documentEntries(content))
            add(QStringLiteral("document"), subcategory, tag);
    if (selectsFaces(dataType)) {
        // A missing array counts as empty here: the metadata never fails.
        const qsizetype neutral = content.faceImages ? content.faceImages->size() : 0;
        const qsizetype smiling = content.faceSmileImages ? content.faceSmileImages->size() : 0;
        for (qsizetype i = 0; i < neutral; ++i)
            add(QStringLiteral("photo"), QStringLiteral("selfie"), QStringLiteral("default"));
        for (qsizetype i = 0; i < smiling; ++i)
            add(QStringLiteral("photo"), QStringLiteral("selfie"), QStringLiteral("smile"));
    }
    // The backend expects this placeholder on every upload, exactly so.
    const VextilJsonValue extraInfo(VextilJsonValue::Object{{QStringLiteral("foo"), QStringLiteral("foo")}});
    return VextilJsonValue::Object{{QStringLiteral("files"), std::move(entries)},
                                   {QStringLiteral("extra_info"), extraInfo}};
}

VextilJsonValue VextilUploadRequest::fileInfo(const QString &name, const QString &category,
                                              const QString &subcategory, const QString &tag)
{
    return VextilJsonValue::Object{{QStringLiteral("name"), name},
                                   {QStringLiteral("type"), QStringLiteral("file")},
                                   {QStringLiteral("category"), category},
                                   {QStringLiteral("sub_category"), subcategory},
                                   {QStringLiteral("tag"), tag}};
}

QString VextilUploadRequest::boundary()
{
    return QStringLiteral("----Boundary") + QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper();
}

QByteArray VextilUploadRequest::body(const VextilMetadataField &metadata, const QList<VextilFilePart> &files,
                                     const QString &boundary)
{
    const QByteArray b = boundary.toUtf8();
    qsizetype size = 256 + metadata.values.size() * 3;
    for (const VextilFilePart &file : files)
        size += file.data.size() + 2 * file.name.size() + b.size() + 96;
    QByteArray body;
    body.reserve(size);  // one allocation: the body is as large as all images together

    body.append("--").append(b).append("\r\n");
    body.append("Content-Disposition: form-data; name=\"").append(metadata.name.toUtf8()).append("\"\r\n\r\n");
    body.append(metadata.values.toUtf8());
    for (const VextilFilePart &file : files) {
        const QByteArray name = file.name.toUtf8();
        body.append("\r\n--").append(b).append("\r\n");
        // No blank after the colon in file parts, unlike the metadata part: the backend's
        // parser was written against exactly these bytes.
        body.append("Content-Disposition:form-data; name=\"").append(name).append("\"; filename=\"").append(name)
            .append("\"\r\n");
        body.append("Content-Type: image/jpeg\r\n\r\n");
        body.append(file.data);
    }
    body.append("\r\n--").append(b).append("--\r\n");
    return body;
}

VextilHeaderFields VextilUploadRequest::headers(const QString &authKey, const QString &boundary)
{
    // Qt drops a header whose value is a null byte array; an empty key is sent, empty.
    QByteArray key = authKey.toUtf8();
    if (key.isNull())
        key = QByteArray("", 0);
    return {{"Content-Type", "multipart/form-data; boundary=" + boundary.toUtf8()},
            {"Authorization", key},
            {"Cache-Control", "no-cache"}};
}
