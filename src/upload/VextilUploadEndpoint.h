#pragma once

#include <QByteArray>
#include <QList>
#include <QSslCertificate>
#include <QString>
#include <QUrl>

/// Where uploads go, whom to trust there and how long a transfer may stall. The host application
/// sets the host and extra certificate authorities in code (VextilRepository); without that, the
/// build's default host (CMake VEXTIL_UPLOAD_HOST) and the system's authorities hold. Builds with
/// VEXTIL_ENV_OVERRIDES (the default) also read, at every upload, these development overrides,
/// which win over the code and log one warning while in effect:
///   VEXTIL_UPLOAD_HOST        host[:port] of the upload service (scheme and path stay https, /file)
///   VEXTIL_UPLOAD_TIMEOUT_MS  idle time-out of a transfer, default 60000
///   VEXTIL_UPLOAD_CA_FILE     PEM file of extra certificate authorities to trust
struct VextilUploadEndpoint {
    QUrl url;
    int timeoutMs = 60000;
    QList<QSslCertificate> extraAuthorities;
    QList<QByteArray> pinnedKeys;  ///< SHA-256 digests of SubjectPublicKeyInfo; none means no pinning

    /// The endpoint in force now.
    static VextilUploadEndpoint current();

    /// The host's own settings; any thread. An empty host means the build's default.
    static void setHost(const QString &host);
    static QString host();
    static void setExtraAuthorities(const QList<QSslCertificate> &authorities);
    static void setPinnedKeys(const QList<QByteArray> &digests);
};
