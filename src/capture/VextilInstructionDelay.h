#pragma once

#include <QList>
#include <QString>

#include <chrono>
#include <mutex>
#include <optional>

/// The felt delay of the camera screen's instruction: from the delivery of the frame that made
/// a new instruction due to the first paint of the screen after it. An instruction replaced
/// before it was painted was never seen, so only its successor is measured. Any thread.
class VextilInstructionDelay {
public:
    using Clock = std::chrono::steady_clock;

    /// A frame delivered at `delivered` made `text` due (a repeat of a due text keeps the earlier frame).
    void due(const QString &text, Clock::time_point delivered);
    /// The screen painted its instruction; `at` is when.
    void painted(Clock::time_point at = Clock::now());
    /// Every measured delay so far, in milliseconds, in order.
    QList<double> delaysMs() const;

private:
    mutable std::mutex m_mutex;
    std::optional<std::pair<QString, Clock::time_point>> m_due;
    QList<double> m_delaysMs;
};
