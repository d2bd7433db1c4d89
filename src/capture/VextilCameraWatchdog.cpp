#include "capture/VextilCameraWatchdog.h"

#include <VextilToolkit/VextilFrameSource.h>

#include "core/VextilTexts.h"

namespace {
constexpr int kCheckMs = 250;
}

VextilCameraWatchdog::VextilCameraWatchdog(VextilFrameSource *source, QObject *parent)
    : QObject(parent), m_source(source)
{
    m_clock.start();
    m_timer.setInterval(kCheckMs);
    connect(&m_timer, &QTimer::timeout, this, &VextilCameraWatchdog::check);
}

void VextilCameraWatchdog::noteFrame() { m_lastFrameMs.store(m_clock.elapsed(), std::memory_order_relaxed); }

void VextilCameraWatchdog::watch()
{
    m_openedMs = m_clock.elapsed();
    m_timer.start();
    check();
}

void VextilCameraWatchdog::rest() { m_timer.stop(); }

void VextilCameraWatchdog::check()
{
    const qint64 now = m_clock.elapsed();
    const qint64 lastFrame = m_lastFrameMs.load(std::memory_order_relaxed);
    if (lastFrame >= m_openedMs && now - lastFrame < kStallMs) {
        setHealth(Health::Live);
        return;
    }
    if (!m_source->isAvailable())
        setHealth(Health::NoCamera);
    else if (now - std::max(lastFrame, m_openedMs) >= kStallMs)
        setHealth(Health::Stalled);
    else
        return;  // opened a moment ago: its first frame may still be on its way
    if (now - m_openedMs < kStallMs)
        return;
    // A camera that failed, vanished or froze may come back, and one may be plugged in: reopen.
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
