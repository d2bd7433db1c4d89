#include "upload/VextilUploadEndpoint.h"

#include "core/VextilLocked.h"

#include <QMutex>

namespace {

constexpr int kDefaultTimeoutMs = 60000;

struct HostSettings {
    QMutex mutex;
    QString host;
    QList<QSslCertificate> authorities;
    QList<QByteArray> pins;
    int timeoutMs = kDefaultTimeoutMs;
    VextilUploadEndpoint::Adjustment adjustment;
};

HostSettings &hostSettings()
{
    static HostSettings settings;
    return settings;
}

}  // namespace

VextilUploadEndpoint VextilUploadEndpoint::current()
{
    VextilUploadEndpoint endpoint;
    HostSettings &settings = hostSettings();
    QMutexLocker lock(&settings.mutex);
    endpoint.url = QUrl(QStringLiteral("https://%1/file")
                            .arg(settings.host.isEmpty() ? QStringLiteral(VEXTIL_DEFAULT_UPLOAD_HOST) : settings.host));
    endpoint.extraAuthorities = settings.authorities;
    endpoint.pinnedKeys = settings.pins;
    endpoint.timeoutMs = settings.timeoutMs;
    const Adjustment adjustment = settings.adjustment;
    lock.unlock();
    if (adjustment)
        adjustment(endpoint);
    return endpoint;
}

void VextilUploadEndpoint::setHost(const QString &host)
{
    writeLocked(hostSettings().mutex, hostSettings().host, host);
}
QString VextilUploadEndpoint::host() { return readLocked(hostSettings().mutex, hostSettings().host); }

void VextilUploadEndpoint::setExtraAuthorities(const QList<QSslCertificate> &authorities)
{
    writeLocked(hostSettings().mutex, hostSettings().authorities, authorities);
}

void VextilUploadEndpoint::setPinnedKeys(const QList<QByteArray> &digests)
{
    writeLocked(hostSettings().mutex, hostSettings().pins, digests);
}

void VextilUploadEndpoint::setTimeoutMs(int milliseconds)
{
    writeLocked(hostSettings().mutex, hostSettings().timeoutMs, milliseconds > 0 ? milliseconds : kDefaultTimeoutMs);
}

int VextilUploadEndpoint::timeoutSetting() { return readLocked(hostSettings().mutex, hostSettings().timeoutMs); }

void VextilUploadEndpoint::setAdjustment(Adjustment adjustment)
{
    writeLocked(hostSettings().mutex, hostSettings().adjustment, std::move(adjustment));
}
