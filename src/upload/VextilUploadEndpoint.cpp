#include "upload/VextilUploadEndpoint.h"

#include <QtGlobal>

VextilUploadEndpoint VextilUploadEndpoint::current()
{
    VextilUploadEndpoint endpoint;
    const QString host = qEnvironmentVariableIsEmpty("VEXTIL_UPLOAD_HOST")
                             ? QStringLiteral(VEXTIL_DEFAULT_UPLOAD_HOST)
                             : qEnvironmentVariable("VEXTIL_UPLOAD_HOST");
    endpoint.url = QUrl(QStringLiteral("https://%1/file").arg(host));
    bool ok = false;
    const int timeout = qEnvironmentVariableIntValue("VEXTIL_UPLOAD_TIMEOUT_MS", &ok);
    if (ok && timeout > 0)
        endpoint.timeoutMs = timeout;
    if (!qEnvironmentVariableIsEmpty("VEXTIL_UPLOAD_CA_FILE"))
        endpoint.extraAuthorities = QSslCertificate::fromPath(qEnvironmentVariable("VEXTIL_UPLOAD_CA_FILE"));
    return endpoint;
}
