#include "upload/VextilEnvironmentOverrides.h"

#include "upload/VextilUploadEndpoint.h"

#include <QLoggingCategory>
#include <QtGlobal>

#include <atomic>

Q_LOGGING_CATEGORY(lcVextilOverrides, "vextil.upload.overrides")

void VextilEnvironmentOverrides::install() { VextilUploadEndpoint::setAdjustment(&VextilEnvironmentOverrides::apply); }

void VextilEnvironmentOverrides::apply(VextilUploadEndpoint &endpoint)
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
        qCWarning(lcVextilOverrides).noquote()
            << "upload settings overridden from the environment (VEXTIL_UPLOAD_HOST, VEXTIL_UPLOAD_CA_FILE,"
               " VEXTIL_UPLOAD_TIMEOUT_MS): a development build";
}
