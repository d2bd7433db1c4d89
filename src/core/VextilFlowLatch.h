#pragma once

#include <VextilToolkit/VextilError.h>
#include <VextilToolkit/VextilToolkitExport.h>

#include <optional>

/// The rule every capture flow keeps, whichever face shows its screens: one flow at a time, and
/// exactly one report per flow, with the outcome decided when it started to close (a later
/// attempt to close it again changes nothing). Exported for the Qt Quick module; not API.
class VEXTIL_EXPORT VextilFlowLatch {
public:
    struct Outcome {
        bool success = false;
        std::optional<VextilError> error;
    };

    /// A new flow starts: nothing reported, not closing.
    void open();
    /// A flow started, is not closing and has not reported.
    bool isOpen() const { return !m_closing && !m_reported; }
    /// The flow is closing and has not reported yet.
    bool isClosing() const { return m_closing.has_value(); }
    /// Whether the current flow (if any) has reported.
    bool hasReported() const { return m_reported; }
    /// Decides the outcome, unless the flow is already closing or reported.
    void close(bool success, std::optional<VextilError> error);
    /// The outcome to report, once per flow: empty if the flow is not closing or has reported.
    std::optional<Outcome> take();

private:
    bool m_reported = true;  // nothing to report before the first flow
    std::optional<Outcome> m_closing;
};
