#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

#include <atomic>

class VextilFrameSource;

/// Tells a camera that delivers from one that does not. Backends report few camera faults (Qt
/// 6.4's GStreamer camera reports none: not a failure to open, not an unplugged camera, not a
/// frozen feed), so frames are the only evidence. While watching, a source with no camera, or
/// whose frames stop for kStallMs, is reopened every kStallMs until frames come again.
/// Frames are noted on any thread; everything else happens on the watchdog's thread.
class VextilCameraWatchdog : public QObject {
    Q_OBJECT
public:
    enum class Health {
        Live,
        NoCamera,
        Stalled
    };
    static constexpr int kStallMs = 4000;

    explicit VextilCameraWatchdog(VextilFrameSource *source, QObject *parent = nullptr);

    /// The source to watch and reopen (it replaced the one given before).
    void setSource(VextilFrameSource *source) { m_source = source; }
    /// A frame arrived; any thread.
    void noteFrame();
    /// The source has been started: watch it from now on.
    void watch();
    /// The source has been stopped on purpose: nothing to watch.
    void rest();
    Health health() const { return m_health; }
    /// What the camera screen tells the user, translated; empty while the camera delivers.
    static QString message(Health health);

Q_SIGNALS:
    void healthChanged(VextilCameraWatchdog::Health health);

private:
    void check();
    void setHealth(Health health);

    VextilFrameSource *m_source;
    QTimer m_timer;
    QElapsedTimer m_clock;
    std::atomic<qint64> m_lastFrameMs{-1};
    qint64 m_openedMs = 0;  // when the source was last started
    Health m_health = Health::Live;
};
