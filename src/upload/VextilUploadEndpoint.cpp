#include "upload/VextilUploadEndpoint.h"

#include "core/VextilLocked.h"

#include <QLoggingCategory>
#include <QMutex>
#include <QtGlobal>

#include <atomic>

Q_LOGGING_CATEGORY(lcVextilUpload, "vextil.upload")

namespace {

struct HostSettings {
    QMutex mutex;
    QString host;
    QList<QSslCertificate> authorities;
    QList<QByteArray> pins;
};

HostSettings &hostSettings()
{
    static HostSettings settings;
    return settings;
}

#ifdef VEXTIL_ENV_OVERRIDES
// Applies the development overrides; says so once per process.
void applyOverrides(VextilUploadEndpoint &endpoint)
{
    const bool host = !qEnvironmentVariableIsEmpty("VEXTIL_UPLOAD_HOST");
    const bool authorities = !qEnvironmentVariableIsEmpty("VEXTIL_UPLOAD_CA_FILE");
    bool ok = false;
    const int timeout = qEnvironmentVariableIntValue("VEXTIL_UPLOAD_TIMEOUT_MS", &ok);
    if (host)
        endpoint.url = QUrl(QStringLiteral("https://%1/file").arg(qEnvironmentVariable("VEXTIL_UPLOAD_HOST")));
    if (authorities)
        endpoint.extraAuthorities = QSslCertificate::fromPath(qEnvironmentVariable("VEXTIL_UPLOAD_CA_FILE"));
    if (ok && timeout > 0)
        endpoint.timeoutMs = timeout;
    static std::atomic<bool> warned{false};
    if ((host || authorities || ok) && !warned.exchange(true))
        qCWarning(lcVextilUpload).noquote()
            << "upload settings overridden from the environment (VEXTIL_UPLOAD_HOST, VEXTIL_UPLOAD_CA_FILE,"
               " VEXTIL_UPLOAD_TIMEOUT_MS); shipping builds turn VEXTIL_ENV_OVERRIDES off";
}
#endif

}  // namespace

VextilUploadEndpoint VextilUploadEndpoint::current()
{
    VextilUploadEndpoint endpoint;
    HostSettings &settings = hostSettings();
    const QString host = readLocked(settings.mutex, settings.host);
    endpoint.url = QUrl(QStringLiteral("https://%1/file").arg(host.isEmpty() ? QStringLiteral(VEXTIL_DEFAULT_UPLOAD_HOST) : host));
    endpoint.extraAuthorities = readLocked(settings.mutex, settings.authorities);
    endpoint.pinnedKeys = readLocked(settings.mutex, settings.pins);
#ifdef VEXTIL_ENV_OVERRIDES
    applyOverrides(endpoint);
#endif
    return endpoint;
}

void VextilUploadEndpoint::setHost(const QString &host) { writeLocked(hostSettings().mutex, hostSettings().host, host); }
QString VextilUploadEndpoint::host() { return readLocked(hostSettings().mutex, hostSettings().host); }

void VextilUploadEndpoint::setExtraAuthorities(const QList<QSslCertificate> &authorities)
{
    writeLocked(hostSettings().mutex, hostSettings().authorities, authorities);
}

void VextilUploadEndpoint::setPinnedKeys(const QList<QByteArray> &digests)
{
    writeLocked(hostSettings().mutex, hostSettings().pins, digests);
}
