#include "upload/VextilUploadSession.h"

#include "core/VextilMainQueue.h"
#include "core/VextilThreadHandoff.h"

#include <QCoreApplication>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QSslConfiguration>

namespace {

VextilUploadOutcome outcomeOf(QNetworkReply *reply)
{
    VextilUploadOutcome outcome;
    const QVariant status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute);
    const QNetworkReply::NetworkError error = reply->error();
    // Errors below 200 are network and proxy failures, where no complete answer arrived; the
    // others stand for HTTP statuses, which the caller maps itself.
    outcome.transportFailed = !status.isValid() || (error > QNetworkReply::NoError && error < 200);
    outcome.status = status.toInt();
    outcome.body = reply->readAll();
    outcome.detail = reply->errorString();
    return outcome;
}

}  // namespace

VextilUploadSession::VextilUploadSession()
{
    m_thread.setObjectName(QStringLiteral("com.VextilToolkit.upload"));
}

VextilUploadSession::~VextilUploadSession()
{
    m_thread.quit();
    m_thread.wait();
}

void VextilUploadSession::start(QNetworkRequest request, QByteArray body, VextilServerTrust trust, Handlers handlers)
{
    // Keeps the session (and its thread) alive until the transfer is over, whoever else
    // lets go of it meanwhile; it is let go of on the GUI thread, never on its own.
    auto self = shared_from_this();
    auto *manager = new QNetworkAccessManager;
    manager->moveToThread(&m_thread);
    m_thread.start();
    QMetaObject::invokeMethod(manager, VextilThreadHandoff([self, manager, request, body,
                                                                  trust = std::move(trust),
                                                                  handlers = std::move(handlers)]() mutable {
        QNetworkReply *reply = manager->post(request, body);
        QObject::connect(reply, &QNetworkReply::uploadProgress, reply, handlers.progress);
        // Runs only once the system has validated the chain (an unvalidated chain fails the
        // handshake before this point), and before any request byte is written.
        QObject::connect(reply, &QNetworkReply::encrypted, reply, [reply, trust] {
            if (!trust.accepts(reply->sslConfiguration().peerCertificateChain()))
                reply->abort();
        });
        QObject::connect(reply, &QNetworkReply::finished, reply, [self, manager, reply, handlers]() mutable {
            handlers.completion(outcomeOf(reply));
            manager->deleteLater();  // with its reply, as the thread finishes
            self->m_thread.quit();
            VextilMainQueue::dispatchAsync(qApp, [keep = std::move(self)] {});
        });
    }));
}
