#pragma once

#include <VextilToolkit/VextilToolkitExport.h>

#include <QImage>
#include <QList>
#include <QThread>

#include <condition_variable>
#include <functional>
#include <mutex>
#include <optional>

/// Figures of a capture queue since it started.
struct VextilCaptureStats {
    int delivered = 0;               ///< frames handed to the queue
    int analysed = 0;                ///< frames the handler ran on
    int dropped = 0;                 ///< frames replaced by a newer one before they were taken
    QList<double> analysisMs;        ///< handler time of every analysed frame
};

/// The serial "capture_session_queue": a thread that runs a handler on camera frames one at a
/// time. Frames wait in a one-slot mailbox: a newer frame replaces one not yet taken, so a slow
/// analysis drops late frames and the camera never waits.
class VEXTIL_EXPORT VextilCaptureQueue : public QThread {
    Q_OBJECT
public:
    /// The handler runs on the queue's thread for every frame taken.
    explicit VextilCaptureQueue(std::function<void(const QImage &)> handler, QObject *parent = nullptr);
    /// Stops the thread after the frame in hand, dropping a waiting one.
    ~VextilCaptureQueue() override;

    /// Offers a frame; any thread, never blocks on the analysis.
    void post(const QImage &frame);
    /// Stops taking frames and waits for the thread.
    void shutdown();
    /// The figures so far.
    VextilCaptureStats stats() const;

protected:
    void run() override;

private:
    std::function<void(const QImage &)> m_handler;
    mutable std::mutex m_mutex;
    std::condition_variable m_wake;
    std::optional<QImage> m_pending;
    bool m_stopping = false;
    VextilCaptureStats m_stats;
};
