#pragma once

#include <QByteArray>
#include <QList>
#include <QSslCertificate>
#include <QString>
#include <QUrl>

#include <functional>

/// Where uploads go, whom to trust there and how long a transfer may stall. The host application
/// sets the host, extra certificate authorities and pins in code (VextilRepository); without
/// that, the build's default host (CMake VEXTIL_UPLOAD_HOST) and the system's authorities hold.
/// The library itself never reads the environment: only development builds' own programs may
/// install an adjustment (VextilEnvironmentOverrides).
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
    /// Idle time-out of a transfer; 0 or less restores the default of 60 s.
    static void setTimeoutMs(int milliseconds);
    static int timeoutSetting();  ///< the idle time-out the host set, or the default

    /// Applied to every endpoint after the host's settings; empty to remove. Any thread.
    using Adjustment = std::function<void(VextilUploadEndpoint &)>;
    static void setAdjustment(Adjustment adjustment);
};
