#include "capture/VextilCameraWatchdog.h"

#include <VextilToolkit/VextilFrameSource.h>

#include <gtest/gtest.h>

#include <functional>
#include <vector>

namespace {

using Health = VextilCameraWatchdog::Health;

// A camera that counts how often it is opened; it delivers whatever the test says it does.
class CountingSource : public VextilFrameSource {
public:
    void start() override { ++starts; }
    void stop() override {}
    bool isRunning() const override { return false; }
    QString description() const override { return QStringLiteral("counting"); }
    bool isAvailable() const override { return available; }
    int starts = 0;
    bool available = true;
};

// A camera opened at 0 s, watched on a clock of the test's own, checked every 250 ms as the
// watchdog's timer does; frames come at 15 a second whenever `films` says the camera films.
struct WatchedCamera {
    qint64 now = 0;
    CountingSource source;
    VextilCameraWatchdog watchdog{&source, nullptr, [this] { return now; }};
    std::vector<qint64> reopenedAt;
    qint64 firstFaultAt = -1;

    void run(qint64 untilMs, const std::function<bool(qint64)> &films)
    {
        if (now == 0)
            watchdog.watch();
        for (qint64 nextFrame = now; now < untilMs;) {
            now += 1;
            if (films(now) && now >= nextFrame) {
                watchdog.noteFrame();
                nextFrame = now + 67;
            }
            if (now % VextilCameraWatchdog::kCheckMs != 0)
                continue;
            const int starts = source.starts;
            watchdog.check();
            if (source.starts > starts)
                reopenedAt.push_back(now);
            if (watchdog.health() != Health::Live && firstFaultAt < 0)
                firstFaultAt = now;
        }
    }
};

TEST(VextilCameraWatchdog, ASlowFirstFrameIsWaitedForAndAStallIsNot)
{
    WatchedCamera slow;  // its first frame after 6 s, as a webcam waking from suspend
    slow.run(30000, [](qint64 t) { return t >= 6000; });
    EXPECT_EQ(slow.firstFaultAt, -1) << "no message while it wakes";
    EXPECT_TRUE(slow.reopenedAt.empty());

    WatchedCamera stalling;  // films for 20 s, stops for 10 s, films again
    stalling.run(45000, [](qint64 t) { return t < 20000 || t >= 30000; });
    EXPECT_EQ(stalling.firstFaultAt, 24000) << "4 s after the last frame";
    EXPECT_EQ(stalling.reopenedAt, (std::vector<qint64>{24000, 28000}));
    EXPECT_EQ(stalling.watchdog.health(), Health::Live);
}

TEST(VextilCameraWatchdog, ADeadCameraIsShownWhenItsGraceEndsAndReopenedEverMoreRarely)
{
    WatchedCamera dead;
    dead.run(100000, [](qint64) { return false; });
    EXPECT_EQ(dead.firstFaultAt, 10000);
    EXPECT_EQ(dead.watchdog.health(), Health::Stalled);
    EXPECT_EQ(dead.reopenedAt, (std::vector<qint64>{10000, 14000, 22000, 38000, 70000}));

    // Once it films again, a later fault starts the schedule afresh.
    dead.run(130000, [](qint64 t) { return t >= 100000 && t < 120000; });
    EXPECT_EQ(dead.reopenedAt.back(), 128000) << "4 s after the reopen at 124 s";

    WatchedCamera missing;
    missing.source.available = false;
    missing.run(20000, [](qint64) { return false; });
    EXPECT_EQ(missing.firstFaultAt, 250) << "a missing camera is known at once";
    EXPECT_EQ(missing.watchdog.health(), Health::NoCamera);
    EXPECT_EQ(missing.reopenedAt, (std::vector<qint64>{4000, 8000, 16000}));
}

}  // namespace
