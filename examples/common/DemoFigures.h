#pragma once

#include <QList>

#include <optional>

// What an unattended demo run prints at its end, the same lines for either demo host, so that
// runs of the two can be set side by side.
struct DemoFigures {
    int delivered = 0, analysed = 0, dropped = 0;
    QList<double> analysisMs;  // or, when only summaries are known, meanMs and p95Ms
    std::optional<double> meanMs, p95Ms;
    std::optional<double> secondsToCompletion;
    // The instructions' felt delay: every measure, or only the summaries.
    QList<double> instructionDelayMs;
    std::optional<double> delayP50Ms, delayP95Ms;
    std::optional<int> instructionChanges;
    // Resident memory with the host window up and the toolkit set up, before the capture starts.
    std::optional<double> idleMiB;

    /// The process's resident memory now (VmRSS), in MiB; the peak figure is the high-water mark
    /// of the same measure (ru_maxrss), so the two subtract.
    static double residentMiB();
    void print(bool sent, qint64 uploadMs) const;
};
