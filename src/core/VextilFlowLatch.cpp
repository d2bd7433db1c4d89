#include "core/VextilFlowLatch.h"

void VextilFlowLatch::open()
{
    m_reported = false;
    m_closing.reset();
}

void VextilFlowLatch::close(bool success, std::optional<VextilError> error)
{
    if (m_reported || m_closing)
        return;
    m_closing = Outcome{success, std::move(error)};
}

std::optional<VextilFlowLatch::Outcome> VextilFlowLatch::take()
{
    if (m_reported || !m_closing)
        return std::nullopt;
    m_reported = true;
    return std::exchange(m_closing, std::nullopt);
}
