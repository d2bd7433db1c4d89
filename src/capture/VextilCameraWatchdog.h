#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

#include <atomic>
#include <functional>

class VextilFrameSource;

/// Tells a camera that delivers from one that does not. Backends report few camera faults (Qt
/// 6.4's GStreamer camera reports none: not a failure to open, not an unplugged camera, not a
/// frozen feed), so frames are the only evidence. A camera just opened has kFirstFrameMs for its
/// first frame (slow webcams and cameras waking from suspend take seconds); once it has
/// delivered, frames that stop for kStallMs mean a stall. Either way the fault is shown and the
/// camera reopened, again after 4, 8, 16 s and so on up to kLongestRetryMs while nothing comes.
/// A source with no camera at all is shown at once, and reopened on the same schedule.
/// Frames are noted on any thread; everything else happens on the watchdog's thread.
class VextilCameraWatchdog : public QObject {
    Q_OBJECT
public:
    enum class Health {
        Live,
        NoCamera,
        Stalled
    };
    static constexpr int kFirstFrameMs = 10000;
    static constexpr int kStallMs = 4000;
    static constexpr int kFirstRetryMs = 4000;
    static constexpr int kLongestRetryMs = 64000;
    static constexpr int kCheckMs = 250;

    /// Milliseconds on a steady clock; tests give their own.
    using Clock = std::function<qint64()>;

    explicit VextilCameraWatchdog(VextilFrameSource *source, QObject *parent = nullptr, Clock clock = {});

    /// The source to watch and reopen (it replaced the one given before).
    void setSource(VextilFrameSource *source) { m_source = source; }
    /// A frame arrived; any thread.
    void noteFrame();
    /// The source has been started: watch it from now on, its first frame not yet due.
    void watch();
    /// The source has been stopped on purpose: nothing to watch.
    void rest();
    /// Looks at the frames now; a timer does so every kCheckMs while watching.
    void check();
    Health health() const { return m_health; }
    /// What the camera screen tells the user, translated; empty while the camera delivers.
    static QString message(Health health);

Q_SIGNALS:
    void healthChanged(VextilCameraWatchdog::Health health);

private:
    Health judge(qint64 now, qint64 lastFrame) const;
    void reopen(qint64 now);
    void setHealth(Health health);

    VextilFrameSource *m_source;
    Clock m_clock;
    QElapsedTimer m_elapsed;
    QTimer m_timer;
    std::atomic<qint64> m_lastFrameMs{-1};
    qint64 m_openedMs = 0;   // when the source was last started
    qint64 m_retryMs = 0;    // wait before the next reopen; 0 until the first one
    Health m_health = Health::Live;
};
