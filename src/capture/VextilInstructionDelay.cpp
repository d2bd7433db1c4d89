#include "capture/VextilInstructionDelay.h"

void VextilInstructionDelay::due(const QString &text, Clock::time_point delivered)
{
    std::lock_guard lock(m_mutex);
    if (!m_due || m_due->first != text)
        m_due = std::make_pair(text, delivered);
}

void VextilInstructionDelay::painted(Clock::time_point at)
{
    std::lock_guard lock(m_mutex);
    if (!m_due)
        return;
    m_delaysMs.append(std::chrono::duration<double, std::milli>(at - m_due->second).count());
    m_due.reset();
}

QList<double> VextilInstructionDelay::delaysMs() const
{
    std::lock_guard lock(m_mutex);
    return m_delaysMs;
}
