#pragma once

#include "upload/VextilServerTrust.h"

#include <QByteArray>
#include <QNetworkRequest>
#include <QString>
#include <QThread>

#include <functional>
#include <memory>

/// How one transfer ended.
struct VextilUploadOutcome {
    bool transportFailed = false;  ///< no complete HTTP answer (refused, time-out, TLS, cancelled)
    int status = 0;                ///< HTTP status when an answer came
    QByteArray body;               ///< the answer's body
    QString detail;                ///< what failed, for diagnostics
};

/// One upload's network session: a thread of its own that owns the network access manager, on
/// which progress, the server check and completion run. The server is trusted when the system
/// validates its chain and the upload's VextilServerTrust accepts it. Keeps itself alive until
/// its transfer has completed; its last reference may be dropped on any thread, its own included
/// (which is why it is no QObject: it belongs to no thread).
class VextilUploadSession : public std::enable_shared_from_this<VextilUploadSession> {
public:
    struct Handlers {
        std::function<void(qint64 sent, qint64 total)> progress;      ///< network thread
        /// network thread, once the transfer's threads have ended; exactly once, unless the
        /// application ends first
        std::function<void(const VextilUploadOutcome &)> completion;
    };

    VextilUploadSession();
    /// Stops the thread; waits for it, or, on that very thread, leaves the wait to the GUI thread.
    ~VextilUploadSession();
    VextilUploadSession(const VextilUploadSession &) = delete;
    VextilUploadSession &operator=(const VextilUploadSession &) = delete;

    /// Posts the body to a server that `trust` accepts. One transfer per session.
    void start(QNetworkRequest request, QByteArray body, VextilServerTrust trust, Handlers handlers);

private:
    std::unique_ptr<QThread> m_thread;
};
