#include <VextilToolkit/VextilRepository.h>

#include "core/VextilLocked.h"
#include "core/VextilMainQueue.h"
#include "upload/VextilUploadEndpoint.h"
#include "upload/VextilServerTrust.h"
#include "upload/VextilUploadAnswer.h"
#include "upload/VextilUploadSession.h"

#include <QCoreApplication>
#include <QFile>
#include <QSettings>
#include <QSslConfiguration>
#include <QThread>

#include <climits>

namespace {

// The answer test mode gives without sending anything.
const QVariantMap kTestAnswer{{QStringLiteral("token"), QStringLiteral("7301586240k58k602")}};

// A failed transfer's code: no answer at all, or the answer's status.
int failureCode(const VextilUploadOutcome &outcome)
{
    if (outcome.transportFailed)
        return VextilErrorCodeTransferFailed;
    // 402 and 502 share one code on purpose.
    const bool refused = outcome.status == 402 || outcome.status == 502;
    return refused ? VextilErrorCodeServiceRefused : VextilErrorCodeUnexpectedStatus;
}

}  // namespace

VextilRepository *VextilRepository::sharedInstance()
{
    // A function-local static is created once even under concurrent first calls, and the
    // pointer is never deleted, so the store outlives every user.
    static VextilRepository *instance = [] {
        auto *store = new VextilRepository;
        VextilMainQueue::adopt(store);  // whichever thread asks first
        return store;
    }();
    return instance;
}

QImage VextilRepository::documentFrontImage() const { return readLocked(m_mutex, m_documentFrontImage); }
void VextilRepository::setDocumentFrontImage(const QImage &image) { writeLocked(m_mutex, m_documentFrontImage, image); }
QImage VextilRepository::documentBackImage() const { return readLocked(m_mutex, m_documentBackImage); }
void VextilRepository::setDocumentBackImage(const QImage &image) { writeLocked(m_mutex, m_documentBackImage, image); }
VextilDocumentType VextilRepository::documentType() const { return readLocked(m_mutex, m_documentType); }
void VextilRepository::setDocumentType(VextilDocumentType type) { writeLocked(m_mutex, m_documentType, type); }
VextilRepository::ImageArray VextilRepository::faceImages() const { return readLocked(m_mutex, m_faceImages); }
void VextilRepository::setFaceImages(ImageArray images) { writeLocked(m_mutex, m_faceImages, std::move(images)); }
VextilRepository::ImageArray VextilRepository::faceSmileImages() const { return readLocked(m_mutex, m_faceSmileImages); }
void VextilRepository::setFaceSmileImages(ImageArray images) { writeLocked(m_mutex, m_faceSmileImages, std::move(images)); }
std::optional<QString> VextilRepository::authKey() const { return readLocked(m_mutex, m_authKey); }
void VextilRepository::setAuthKey(std::optional<QString> key) { writeLocked(m_mutex, m_authKey, std::move(key)); }
double VextilRepository::progress() const { return readLocked(m_mutex, m_progress); }
void VextilRepository::setProgress(double progress) { writeLocked(m_mutex, m_progress, progress); }
std::optional<QVariantMap> VextilRepository::resultData() const { return readLocked(m_mutex, m_resultData); }
void VextilRepository::setResultData(std::optional<QVariantMap> data) { writeLocked(m_mutex, m_resultData, std::move(data)); }
std::optional<VextilError> VextilRepository::error() const { return readLocked(m_mutex, m_error); }
void VextilRepository::setError(std::optional<VextilError> error) { writeLocked(m_mutex, m_error, std::move(error)); }
std::shared_ptr<VextilUploadSession> VextilRepository::session() const { return readLocked(m_mutex, m_session); }
void VextilRepository::setSession(std::shared_ptr<VextilUploadSession> session)
{
    // The replaced session may be the last hold on its thread: it goes outside the lock, since
    // stopping that thread may wait for work that needs the lock.
    std::shared_ptr<VextilUploadSession> replaced = std::move(session);
    QMutexLocker lock(&m_mutex);
    m_session.swap(replaced);
}

bool VextilRepository::hasDocumentFrontImage() const { return !documentFrontImage().isNull(); }
bool VextilRepository::hasDocumentBackImage() const { return !documentBackImage().isNull(); }
bool VextilRepository::hasAllDocument() const { return hasDocumentBackImage() && hasDocumentFrontImage(); }

void VextilRepository::resetDocumentFront() { setDocumentFrontImage(QImage()); }
void VextilRepository::resetDocumentBack() { setDocumentBackImage(QImage()); }

void VextilRepository::resetDocumentImages()
{
    resetDocumentBack();
    resetDocumentFront();
}

void VextilRepository::resetFaceImages()
{
    setFaceSmileImages(nullptr);
    setFaceImages(nullptr);
}

void VextilRepository::resetAllImages()
{
    resetDocumentImages();
    resetFaceImages();
}

VextilUploadContent VextilRepository::content() const
{
    QMutexLocker lock(&m_mutex);
    return {m_documentFrontImage, m_documentBackImage, m_documentType, m_faceImages, m_faceSmileImages};
}

std::optional<QList<VextilFilePart>> VextilRepository::mountImagesDataWithDataType(VextilDataType dataType) const
{
    return VextilUploadRequest::files(content(), dataType);
}

VextilJsonValue VextilRepository::mountMetaInfoWithDataType(VextilDataType dataType) const
{
    return VextilUploadRequest::metaInfo(content(), dataType);
}

void VextilRepository::setUploadHost(const QString &host) { VextilUploadEndpoint::setHost(host); }
QString VextilRepository::uploadHost() const { return VextilUploadEndpoint::host(); }

bool VextilRepository::setExtraCertificateAuthorities(const QList<QByteArray> &pemCertificates)
{
    QList<QSslCertificate> authorities;
    for (const QByteArray &pem : pemCertificates) {
        const QList<QSslCertificate> read = QSslCertificate::fromData(pem, QSsl::Pem);
        if (read.isEmpty())
            return false;
        authorities += read;
    }
    VextilUploadEndpoint::setExtraAuthorities(authorities);
    return true;
}

bool VextilRepository::setPinnedPublicKeys(QList<QByteArray> sha256Digests)
{
    for (const QByteArray &digest : sha256Digests)
        if (digest.size() != 32)
            return false;
    VextilUploadEndpoint::setPinnedKeys(sha256Digests);
    return true;
}

void VextilRepository::setTransferTimeout(std::chrono::milliseconds timeout)
{
    VextilUploadEndpoint::setTimeoutMs(int(std::min<std::chrono::milliseconds::rep>(timeout.count(), INT_MAX)));
}

std::chrono::milliseconds VextilRepository::transferTimeout() const
{
    return std::chrono::milliseconds(VextilUploadEndpoint::timeoutSetting());
}

std::optional<QString> VextilRepository::getLocalCertificate()
{
    QFile file(QStringLiteral(":/VextilToolkit/_vextilco.crt"));
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    QString text = QString::fromUtf8(file.readAll());
    // Only the marker lines go; the body keeps its own line breaks, and nothing is decoded.
    text.remove(QStringLiteral("\r\n-----END CERTIFICATE-----"));
    text.remove(QStringLiteral("-----BEGIN CERTIFICATE-----\r\n"));
    return text;
}

void VextilRepository::sendDataWithDataType(VextilDataType dataType, SendCallback callBack)
{
    setProgress(0.0);
    const std::optional<QString> key = authKey();
    if (!key) {
        callBack(std::nullopt, VextilError::createVextilSDKErrorWithCode(VextilErrorCodeNoAuthKey));
        return;
    }
    const VextilUploadContent snapshot = content();
    const std::optional<QList<VextilFilePart>> files = VextilUploadRequest::files(snapshot, dataType);
    if (!files) {
        callBack(std::nullopt, VextilError::createVextilSDKErrorWithCode(VextilErrorCodeNoImages));
        return;
    }
    const QString boundary = generateBoundary();
    const VextilMetadataField metadata{QStringLiteral("META_INFOS"),
                                       jsonStringFromDict(VextilUploadRequest::metaInfo(snapshot, dataType))};
    const QByteArray body = mountBodyDataWithMetadata(metadata, *files, boundary);

    const VextilUploadEndpoint endpoint = VextilUploadEndpoint::current();
    QNetworkRequest request(endpoint.url);
    request.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::PreferNetwork);
    request.setTransferTimeout(endpoint.timeoutMs);
    for (const auto &[name, value] : generateHeaderWithAuthKey(*key, boundary))
        request.setRawHeader(name, value);

    if (QSettings().value(QStringLiteral("isTest")).toBool()) {
        setResultData(kTestAnswer);
        callBack(kTestAnswer, std::nullopt);
        return;
    }
    const QSslConfiguration tls = VextilServerTrust::configuration(endpoint.extraAuthorities);
    request.setSslConfiguration(tls);

    auto session = std::make_shared<VextilUploadSession>();
    setSession(session);  // replaces an earlier session without stopping its transfer
    VextilUploadSession::Handlers handlers;
    handlers.progress = [this](qint64 sent, qint64 total) {
        if (total > 0)  // Qt reports -1 while the size is unknown
            setProgress(double(sent) / double(total));
    };
    handlers.completion = [this, callBack](const VextilUploadOutcome &outcome) { finishTransfer(outcome, callBack); };
    session->start(request, body,
                   VextilServerTrust(getLocalCertificate().value_or(QString()), endpoint.pinnedKeys, tls),
                   std::move(handlers));
}

void VextilRepository::finishTransfer(const VextilUploadOutcome &outcome, const SendCallback &callBack)
{
    if (!outcome.transportFailed && outcome.status == 200) {
        // An answer that is not a JSON object leaves no result, and no error either.
        const std::optional<QVariantMap> result = VextilUploadAnswer::decode(outcome.body);
        setResultData(result);
        callBack(result, std::nullopt);
        return;
    }
    // The callback gets this transfer's own error: another send may store its own meanwhile.
    const VextilError failure = VextilError::createVextilSDKErrorWithCode(failureCode(outcome));
    setError(failure);
    callBack(std::nullopt, failure);
}

