#include "camera/VextilCaptureQueue.h"

#include <QElapsedTimer>

VextilCaptureQueue::VextilCaptureQueue(std::function<void(const VextilCameraFrame &)> handler, QObject *parent)
    : QThread(parent), m_handler(std::move(handler))
{
    setObjectName(QStringLiteral("capture_session_queue"));
}

VextilCaptureQueue::~VextilCaptureQueue() { shutdown(); }

void VextilCaptureQueue::post(const VextilCameraFrame &frame)
{
    {
        std::lock_guard lock(m_mutex);
        if (m_stopping)
            return;
        ++m_stats.delivered;
        if (m_pending)
            ++m_stats.dropped;
        m_pending = frame;
        m_pendingDeliveredAt = std::chrono::steady_clock::now();
    }
    m_wake.notify_one();
}

void VextilCaptureQueue::dispatch(std::function<void()> work)
{
    {
        std::lock_guard lock(m_mutex);
        if (m_stopping)
            return;
        m_work.append(std::move(work));
    }
    m_wake.notify_one();
}

void VextilCaptureQueue::shutdown()
{
    {
        std::lock_guard lock(m_mutex);
        m_stopping = true;
    }
    m_wake.notify_one();
    wait();
}

VextilCaptureStats VextilCaptureQueue::stats() const
{
    std::lock_guard lock(m_mutex);
    return m_stats;
}

void VextilCaptureQueue::run()
{
    for (;;) {
        QList<std::function<void()>> work;
        VextilCameraFrame frame;
        {
            std::unique_lock lock(m_mutex);
            m_wake.wait(lock, [this] { return m_stopping || m_pending || !m_work.isEmpty(); });
            if (m_stopping)
                return;
            work.swap(m_work);
            if (work.isEmpty()) {
                frame = std::move(*m_pending);
                m_pending.reset();
                m_inHandDeliveredAt = m_pendingDeliveredAt;
            }
        }
        // Queued work goes first: a reset queued before a frame must be seen by that frame.
        if (!work.isEmpty()) {
            for (const auto &task : work)
                task();
            continue;
        }
        analyse(frame);
    }
}

void VextilCaptureQueue::analyse(const VextilCameraFrame &frame)
{
    QElapsedTimer timer;
    timer.start();
    m_handler(frame);
    std::lock_guard lock(m_mutex);
    ++m_stats.analysed;
    m_stats.analysisMs.append(double(timer.nsecsElapsed()) / 1e6);
}
