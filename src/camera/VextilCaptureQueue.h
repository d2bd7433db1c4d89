#pragma once

#include <VextilToolkit/VextilCameraFrame.h>
#include <VextilToolkit/VextilCaptureStats.h>

#include <QList>
#include <QThread>

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <optional>

/// The serial "capture_session_queue": a thread that runs a handler on camera frames one at a
/// time. Frames wait in a one-slot mailbox: a newer frame replaces one not yet taken, so a slow
/// analysis drops late frames and the camera never waits. Other work can be queued too; it is
/// never dropped and runs, in order, before the next frame.
class VextilCaptureQueue : public QThread {
    Q_OBJECT
public:
    /// The handler runs on the queue's thread for every frame taken.
    explicit VextilCaptureQueue(std::function<void(const VextilCameraFrame &)> handler, QObject *parent = nullptr);
    /// Stops the thread after the frame in hand, dropping a waiting one.
    ~VextilCaptureQueue() override;

    /// Offers a frame; any thread, never blocks on the analysis.
    void post(const VextilCameraFrame &frame);
    /// Queues work to run on the queue's thread; any thread. Work still waiting at shutdown is dropped.
    void dispatch(std::function<void()> work);
    /// Stops taking frames and waits for the thread.
    void shutdown();
    /// The figures so far.
    VextilCaptureStats stats() const;
    /// When the frame in hand was offered; only on the queue's thread, inside the handler.
    std::chrono::steady_clock::time_point deliveredAt() const { return m_inHandDeliveredAt; }

protected:
    void run() override;

private:
    void analyse(const VextilCameraFrame &frame);

    std::function<void(const VextilCameraFrame &)> m_handler;
    mutable std::mutex m_mutex;
    std::condition_variable m_wake;
    std::optional<VextilCameraFrame> m_pending;
    std::chrono::steady_clock::time_point m_pendingDeliveredAt, m_inHandDeliveredAt;
    QList<std::function<void()>> m_work;
    bool m_stopping = false;
    VextilCaptureStats m_stats;
};
