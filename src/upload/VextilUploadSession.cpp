#include "upload/VextilUploadSession.h"

#include "core/VextilMainQueue.h"
#include "core/VextilThreadHandoff.h"
#include "upload/VextilOnceOnlyBody.h"

#include <QCoreApplication>
#include <QMutex>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QSslConfiguration>

#include <optional>
#include <set>

namespace {

// Every upload thread not yet joined. They are all joined as the application object goes, before
// the process's own clean-up: a thread still ending then would hold OpenSSL's per-thread state
// past the library's clean-up at exit.
QMutex threadsMutex;
std::set<QThread *> liveThreads;
constexpr unsigned long kExitWaitMs = 5000;

void joinAtExit()
{
    QMutexLocker lock(&threadsMutex);
    for (QThread *thread : liveThreads) {
        thread->quit();  // a transfer still under way ends unanswered: nobody waits for it now
        thread->wait(kExitWaitMs);
    }
}

void adopt(QThread *thread)
{
    static const bool routine = [] {
        qAddPostRoutine(joinAtExit);
        return true;
    }();
    Q_UNUSED(routine);
    QMutexLocker lock(&threadsMutex);
    liveThreads.insert(thread);
}

// Joins the thread and deletes it.
void release(QThread *thread)
{
    thread->wait();
    QMutexLocker lock(&threadsMutex);
    liveThreads.erase(thread);
    delete thread;
}

VextilUploadOutcome outcomeOf(QNetworkReply *reply)
{
    VextilUploadOutcome outcome;
    const QVariant status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute);
    const QNetworkReply::NetworkError error = reply->error();
    // Errors below 200 are network and proxy failures, where no complete answer arrived; the
    // others stand for HTTP statuses, which the caller maps itself.
    outcome.transportFailed = !status.isValid() || (error > QNetworkReply::NoError && error < 200);
    outcome.status = status.toInt();
    outcome.body = reply->isOpen() ? reply->readAll() : QByteArray();  // an aborted reply is closed
    outcome.detail = reply->errorString();
    return outcome;
}

// A POST goes out once, to the host it names. Qt would re-send it when its connection closes
// before an answer, though the server may have acted on it; so its body is read as it is sent
// (known length, no buffer of Qt's own) and cannot be read again, which ends a re-send with an
// error. A redirect would send it, or its key, elsewhere: it is an answer like any other.
void sendOnceOnly(QNetworkRequest &request, qint64 bodySize)
{
    request.setHeader(QNetworkRequest::ContentLengthHeader, bodySize);
    request.setAttribute(QNetworkRequest::DoNotBufferUploadDataAttribute, true);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
}

}  // namespace

VextilUploadSession::VextilUploadSession() : m_thread(std::make_unique<QThread>())
{
    m_thread->setObjectName(QStringLiteral("com.VextilToolkit.upload"));
    adopt(m_thread.get());
}

VextilUploadSession::~VextilUploadSession()
{
    m_thread->quit();
    QThread *thread = m_thread.release();
    if (QThread::currentThread() != thread) {
        release(thread);
        return;
    }
    // A host that lets go of the session in its send callback ends it on its own thread, which
    // cannot wait for itself: the GUI thread joins it once its event loop has run out, or the
    // application object does as it goes.
    if (QCoreApplication::instance())
        VextilMainQueue::dispatchAsync(qApp, [thread] { release(thread); });
}

void VextilUploadSession::start(QNetworkRequest request, QByteArray body, VextilServerTrust trust, Handlers handlers)
{
    sendOnceOnly(request, body.size());
    auto *manager = new QNetworkAccessManager;
    manager->moveToThread(m_thread.get());
    auto outcome = std::make_shared<std::optional<VextilUploadOutcome>>();
    // The transfer ends with its thread. The manager goes first, and with it the network's own
    // thread below; only then does the host hear, so a host that quits on the answer outlives
    // every thread of the transfer, and OpenSSL's per-thread state goes with each. A transfer cut
    // short by the application's end takes its manager along the same way, unheard. The hold on
    // the session is let go of here, on the session's own thread.
    QObject::connect(
        m_thread.get(), &QThread::finished, m_thread.get(),
        [self = shared_from_this(), manager, outcome, completion = std::move(handlers.completion)] {
            delete manager;
            if (*outcome)
                completion(**outcome);
        },
        static_cast<Qt::ConnectionType>(Qt::DirectConnection | Qt::SingleShotConnection));
    m_thread->start();
    QThread *thread = m_thread.get();
    QMetaObject::invokeMethod(
        manager, VextilThreadHandoff([manager, thread, outcome, request, body, trust = std::move(trust),
                                      progress = std::move(handlers.progress)]() mutable {
            QNetworkReply *reply = manager->post(request, new VextilOnceOnlyBody(body, manager));
            QObject::connect(reply, &QNetworkReply::uploadProgress, reply, progress);
            // Runs only once the system has validated the chain (an unvalidated chain fails the
            // handshake before this point), and before any request byte is written.
            QObject::connect(reply, &QNetworkReply::encrypted, reply, [reply, trust] {
                if (!trust.accepts(reply->sslConfiguration().peerCertificateChain()))
                    reply->abort();
            });
            QObject::connect(reply, &QNetworkReply::finished, reply, [reply, thread, outcome] {
                *outcome = outcomeOf(reply);
                thread->quit();
            });
        }));
}
