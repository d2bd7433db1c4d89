#include "DemoFigures.h"

#include <QFile>

#include <algorithm>
#include <cstdio>
#include <numeric>
#include <sys/resource.h>

double DemoFigures::residentMiB()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    for (QByteArray line = status.readLine(); !line.isEmpty(); line = status.readLine())
        if (line.startsWith("VmRSS:"))
            return line.mid(6).trimmed().split(' ').value(0).toDouble() / 1024.0;  // in kB
    return 0;
}

void DemoFigures::print(bool sent, qint64 uploadMs) const
{
    QList<double> times = analysisMs;
    std::sort(times.begin(), times.end());
    const double mean = meanMs.value_or(times.isEmpty() ? 0 : std::accumulate(times.begin(), times.end(), 0.0) / double(times.size()));
    const double p95 = p95Ms.value_or(times.isEmpty() ? 0 : times[qsizetype(double(times.size() - 1) * 0.95)]);
    struct rusage usage {};
    getrusage(RUSAGE_SELF, &usage);
    std::printf("figures:\n");
    std::printf("  frames delivered %d, analysed %d, dropped %d\n", delivered, analysed, dropped);
    std::printf("  analysis time: mean %.2f ms, p95 %.2f ms\n", mean, p95);
    if (secondsToCompletion)
        std::printf("  first neutral image to completion: %.2f s\n", *secondsToCompletion);
    QList<double> delays = instructionDelayMs;
    std::sort(delays.begin(), delays.end());
    const auto share = [&delays](double at) { return delays.isEmpty() ? 0.0 : delays[qsizetype(double(delays.size() - 1) * at)]; };
    std::printf("  instruction felt delay (frame delivered to instruction painted): p50 %.1f ms, p95 %.1f ms over %d changes\n",
                delayP50Ms.value_or(share(0.5)), delayP95Ms.value_or(share(0.95)),
                instructionChanges.value_or(int(delays.size())));
    const double peakMiB = double(usage.ru_maxrss) / 1024.0;
    if (idleMiB)
        std::printf("  idle memory of the host: %.1f MiB\n", *idleMiB);
    std::printf("  peak memory of the process: %.1f MiB\n", peakMiB);
    if (idleMiB)
        std::printf("  capture adds: %.1f MiB over idle\n", peakMiB - *idleMiB);
    std::printf("  upload: %s in %lld ms\n", sent ? "sent" : "failed", qlonglong(uploadMs));
}
