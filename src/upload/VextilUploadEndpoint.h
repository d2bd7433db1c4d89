#pragma once

#include <QList>
#include <QSslCertificate>
#include <QUrl>

/// Where uploads go and how long they may stall: a deployment setting. The build sets the
/// default host (CMake VEXTIL_UPLOAD_HOST); development servers and tests override it at run
/// time, without a rebuild, through the environment:
///   VEXTIL_UPLOAD_HOST        host[:port] of the upload service (scheme and path stay https, /file)
///   VEXTIL_UPLOAD_TIMEOUT_MS  idle time-out of a transfer, default 60000
///   VEXTIL_UPLOAD_CA_FILE     PEM file of extra certificate authorities to trust
struct VextilUploadEndpoint {
    QUrl url;
    int timeoutMs = 60000;
    QList<QSslCertificate> extraAuthorities;

    /// The endpoint in force now (the environment is read at every call).
    static VextilUploadEndpoint current();
};
