#include "capture/VextilCameraWatchdog.h"

#include <VextilToolkit/VextilFrameSource.h>

#include "core/VextilTexts.h"

#include <algorithm>

VextilCameraWatchdog::VextilCameraWatchdog(VextilFrameSource *source, QObject *parent, Clock clock)
    : QObject(parent), m_source(source), m_clock(std::move(clock))
{
    m_elapsed.start();
    if (!m_clock)
        m_clock = [this] { return m_elapsed.elapsed(); };
    m_timer.setInterval(kCheckMs);
    connect(&m_timer, &QTimer::timeout, this, &VextilCameraWatchdog::check);
}

void VextilCameraWatchdog::noteFrame() { m_lastFrameMs.store(m_clock(), std::memory_order_relaxed); }

void VextilCameraWatchdog::watch()
{
    m_openedMs = m_clock();
    m_retryMs = 0;
    m_timer.start();
    check();
}

void VextilCameraWatchdog::rest() { m_timer.stop(); }

void VextilCameraWatchdog::check()
{
    const qint64 now = m_clock();
    const qint64 lastFrame = m_lastFrameMs.load(std::memory_order_relaxed);
    const Health health = judge(now, lastFrame);
    if (health == Health::Live && lastFrame >= m_openedMs)
        m_retryMs = 0;  // it delivers: a later fault starts the schedule afresh
    setHealth(health);
    if (health == Health::Live)
        return;
    // Each reopen waits twice as long as the one before, the first 4 s from the last opening.
    if (now - m_openedMs >= std::max<qint64>(m_retryMs, kFirstRetryMs))
        reopen(now);
}

VextilCameraWatchdog::Health VextilCameraWatchdog::judge(qint64 now, qint64 lastFrame) const
{
    const bool delivered = lastFrame >= m_openedMs;
    if (delivered && now - lastFrame < kStallMs)
        return Health::Live;
    if (!m_source->isAvailable())
        return Health::NoCamera;
    if (delivered || m_retryMs > 0)
        return Health::Stalled;  // stopped, or still nothing after a reopen
    return now - m_openedMs < kFirstFrameMs ? Health::Live : Health::Stalled;
}

void VextilCameraWatchdog::reopen(qint64 now)
{
    // A camera that failed, vanished or froze may come back, and one may be plugged in.
    m_retryMs = m_retryMs == 0 ? kFirstRetryMs : std::min<qint64>(m_retryMs * 2, kLongestRetryMs);
    m_source->stop();
    m_source->start();
    m_openedMs = now;
}

void VextilCameraWatchdog::setHealth(Health health)
{
    if (std::exchange(m_health, health) != health)
        Q_EMIT healthChanged(health);
}

QString VextilCameraWatchdog::message(Health health)
{
    switch (health) {
    case Health::NoCamera: return VextilTexts::tr("No camera found");
    case Health::Stalled: return VextilTexts::tr("The camera is not responding");
    case Health::Live: break;
    }
    return {};
}
