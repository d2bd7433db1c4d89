// Felt delay of the camera screen's instruction, in both faces: from the delivery of the frame
// that made a new instruction due to the screen's first paint after it, as the toolkit measures
// it for its hosts. The camera is a frame source written here: the sample clip's neutral face
// for 1.5 s, then a plain grey picture of the same size for 1 s, over and over, at 30 frames a
// second on a thread of its own. Each face runs idle and with every core kept busy by spinning
// threads, each run in a process of its own so that no run inherits another's singletons.
//
//   vextil_felt_delay_bench [CYCLES] [widgets|qml] [idle|busy]
//
// CYCLES (20 by default) face-then-grey cycles per run; a face or load named runs only that one.

#include <VextilToolkit/VextilCaptureStats.h>
#include <VextilToolkit/VextilFace.h>
#include <VextilToolkit/VextilFrameSource.h>
#include <VextilToolkit/VextilToolkitSettings.h>
#include <VextilToolkit/VextilVideoFileReader.h>

#include "capture/VextilCaptureSession.h"

#include <QAbstractButton>
#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QLabel>
#include <QPointer>
#include <QProcess>
#include <QQmlApplicationEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTimer>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <thread>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kFramesPerSecond = 30;
constexpr int kFaceFrames = 45;  // 1.5 s
constexpr int kGreyFrames = 30;  // 1 s
constexpr int kCycleFrames = kFaceFrames + kGreyFrames;
// The sample clip shows an empty room for its first 2 s, then the neutral face until the smile.
constexpr double kNeutralFromSeconds = 2.0;

QString toolkitText(const char *english) { return QCoreApplication::translate("VextilToolkit", english); }

// The pictures the camera shows, made once so that delivering a frame costs no decoding.
struct Film {
    QList<QImage> face;  // one per frame of the face's 1.5 s
    QImage grey;
    int cycles = 0;
};

std::optional<Film> makeFilm(int cycles)
{
    VextilVideoFileReader reader;
    if (!reader.open(QStringLiteral(VEXTIL_SELFIE_CLIP)))
        return std::nullopt;
    const double clipFps = reader.framesPerSecond();
    QList<QImage> clip;
    while (auto frame = reader.readFrame()) {
        if (frame->seconds + 1e-9 < kNeutralFromSeconds)
            continue;
        if (frame->seconds >= kNeutralFromSeconds + double(kFaceFrames) / kFramesPerSecond)
            break;
        clip.append(frame->image);
    }
    if (clip.isEmpty())
        return std::nullopt;
    Film film;
    film.cycles = cycles;
    // Played at the clip's own pace: a 15 fps clip shows each of its frames twice.
    for (int i = 0; i < kFaceFrames; ++i)
        film.face.append(clip[qsizetype(double(i) * clipFps / kFramesPerSecond) % clip.size()]);
    film.grey = QImage(clip.first().size(), QImage::Format_RGB32);
    film.grey.fill(QColor(128, 128, 128));
    return film;
}

// Where the camera is in the film, kept outside the source: the toolkit owns the source and may
// stop and restart it, and the film goes on where it was.
struct Reel {
    std::atomic<int> next{0};        // the next frame of the film
    std::atomic<bool> ended{false};  // every cycle delivered
    std::atomic<int> sources{0};
    std::atomic<qint64> worstLateUs{0};  // how far behind its time a frame was delivered, at worst
};

class FaceThenGrey : public VextilFrameSource {
public:
    FaceThenGrey(std::shared_ptr<const Film> film, std::shared_ptr<Reel> reel)
        : m_film(std::move(film)), m_reel(std::move(reel))
    {
        ++m_reel->sources;
    }
    ~FaceThenGrey() override { stop(); }

    void start() override
    {
        stop();
        m_running = true;
        m_thread = std::thread([this] {
            const auto period = std::chrono::nanoseconds(1'000'000'000 / kFramesPerSecond);
            const int total = m_film->cycles * kCycleFrames;
            const int first = m_reel->next;
            const auto started = Clock::now();
            for (int k = first; m_running && k < total; ++k) {
                const auto due = started + (k - first) * period;
                std::this_thread::sleep_until(due);
                if (!m_running)
                    return;
                const qint64 lateUs = std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - due).count();
                if (lateUs > m_reel->worstLateUs)
                    m_reel->worstLateUs = lateUs;
                const int inCycle = k % kCycleFrames;
                deliver(VextilCameraFrame(inCycle < kFaceFrames ? m_film->face[inCycle] : m_film->grey));
                m_reel->next = k + 1;
            }
            if (m_reel->next >= total)
                m_reel->ended = true;
        });
    }
    void stop() override
    {
        m_running = false;
        if (m_thread.joinable())
            m_thread.join();
    }
    bool isRunning() const override { return m_running; }
    QString description() const override { return QStringLiteral("felt delay bench: face then grey"); }
    bool isAvailable() const override { return true; }

private:
    std::shared_ptr<const Film> m_film;
    std::shared_ptr<Reel> m_reel;
    std::atomic<bool> m_running{false};
    std::thread m_thread;
};

// Other work on every core, at normal priority, for the whole run.
class Spinners {
public:
    explicit Spinners(unsigned count)
    {
        for (unsigned i = 0; i < count; ++i)
            m_threads.emplace_back([this] {
                volatile double x = 1;
                while (!m_stop.load(std::memory_order_relaxed))
                    x = x * 1.0000001 + 1e-9;
            });
    }
    ~Spinners()
    {
        m_stop = true;
        for (std::thread &thread : m_threads)
            thread.join();
    }
    unsigned count() const { return unsigned(m_threads.size()); }

private:
    std::atomic<bool> m_stop{false};
    std::vector<std::thread> m_threads;
};

// The toolkit's own percentile: the value at (n - 1) * share of the sorted list.
double share(QList<double> values, double at)
{
    if (values.isEmpty())
        return 0;
    std::sort(values.begin(), values.end());
    return values[qsizetype(double(values.size() - 1) * at)];
}

// Which instruction each measured delay belongs to, where its time went, and how the flow went.
// A delay is recorded when the screen paints after an instruction became due, so the delays that
// appear before the next instruction comes belong to the one before it. Looked at right after the
// toolkit's own paint hook (connected after it, so called after it), a new delay also tells when
// that paint was: the time from the instruction reaching the GUI thread to it, the rest before.
class Watch {
public:
    void attach(VextilCaptureSession *session)
    {
        if (!session || session == m_session)
            return;
        harvest();
        m_session = session;
        m_seen = 0;
        m_lastText = session->instruction();
        m_changedAt.reset();
        QObject::connect(session, &VextilCaptureSession::instructionChanged, session, [this](const QString &text) {
            harvest();
            if (text != m_lastText) {
                if (text == toolkitText("Looking for face") && m_sawFace)
                    ++resets;
                m_sawFace = text != toolkitText("Looking for face");
                m_changedAt = Clock::now();  // where the toolkit made it due, if a frame did
            }
            m_lastText = text;
        });
        QObject::connect(session, &VextilCaptureSession::progressChanged, session,
                         [this](double progress) { bestProgress = std::max(bestProgress, progress); });
    }
    // Takes the delays recorded since last time; `paintedAt` when called right after a paint.
    void harvest(std::optional<Clock::time_point> paintedAt = std::nullopt)
    {
        if (!m_session)
            return;
        const QList<double> delays = m_session->captureStats().instructionDelayMs;
        for (qsizetype i = m_seen; i < delays.size(); ++i) {
            byText[m_lastText].append(delays[i]);
            if (paintedAt && m_changedAt && i == delays.size() - 1) {
                const double toPaint = std::chrono::duration<double, std::milli>(*paintedAt - *m_changedAt).count();
                toGuiThreadMs.append(delays[i] - toPaint);
                toPaintMs.append(toPaint);
            }
        }
        m_seen = delays.size();
    }
    void painted() { harvest(Clock::now()); }

    std::map<QString, QList<double>> byText;
    QList<double> toGuiThreadMs, toPaintMs;
    int resets = 0;  // "Looking for face" again after a face was seen
    double bestProgress = 0;

private:
    QPointer<VextilCaptureSession> m_session;
    qsizetype m_seen = 0;
    QString m_lastText;
    std::optional<Clock::time_point> m_changedAt;
    bool m_sawFace = false;
};

// Receives a screen's paint signal, which the toolkit's own classes declare: connected by name.
class PaintProbe : public QObject {
    Q_OBJECT
public:
    explicit PaintProbe(Watch &watch) : m_watch(watch) {}
public Q_SLOTS:
    void painted() { m_watch.painted(); }

private:
    Watch &m_watch;
};

struct Outcome {
    QList<double> delays;            // every measured delay, from the face's own report
    std::optional<double> p50, p95;  // the face's own percentiles, where it reports them
    VextilCaptureStats frames;
    int completions = 0;  // the capture completed: the review was answered with a retake
    int flowsEnded = 0;   // the flow ended on its own and was requested again
    bool finished = false;
};

void report(const char *face, const char *load, const Outcome &outcome, const Watch &watch, const Reel &reel,
            const Film &film)
{
    const double p50 = outcome.p50.value_or(share(outcome.delays, 0.5));
    const double p95 = outcome.p95.value_or(share(outcome.delays, 0.95));
    std::printf("felt delay %s %s: p50 %.1f ms, p95 %.1f ms over %d changes\n", face, load, p50, p95,
                int(outcome.delays.size()));
    for (const auto &[text, delays] : watch.byText)
        std::printf("    \"%s\": p50 %.1f ms, p95 %.1f ms, max %.1f ms over %d\n", qPrintable(text), share(delays, 0.5),
                    share(delays, 0.95), share(delays, 1.0), int(delays.size()));
    std::printf("    where it goes: frame to the instruction on the GUI thread p50 %.1f ms, p95 %.1f ms; "
                "from there to the paint p50 %.1f ms, p95 %.1f ms (%d of %d changes split)\n",
                share(watch.toGuiThreadMs, 0.5), share(watch.toGuiThreadMs, 0.95), share(watch.toPaintMs, 0.5),
                share(watch.toPaintMs, 0.95), int(watch.toPaintMs.size()), int(outcome.delays.size()));
    std::printf("    camera: %d of %d frames delivered (at worst %.1f ms behind time), %d analysed, %d dropped, "
                "analysis p50 %.1f ms, p95 %.1f ms\n",
                reel.next.load(), film.cycles * kCycleFrames, double(reel.worstLateUs) / 1000.0,
                outcome.frames.analysed, outcome.frames.dropped, share(outcome.frames.analysisMs, 0.5),
                share(outcome.frames.analysisMs, 0.95));
    std::printf(
        "    flow: %d cycles, back to \"Looking for face\" %d times, progress bar at most %.0f of 5 neutral images, "
        "%d completions (retaken), %d flows ended and requested again, %d frame sources made\n",
        film.cycles, watch.resets, watch.bestProgress * 5, outcome.completions, outcome.flowsEnded,
        reel.sources.load());
    std::fflush(stdout);
}

// The Widgets face, as a host runs it: a window of its own, VextilFace over it.
Outcome runWidgets(const Reel &reel, Watch &watch, int giveUpMs)
{
    Outcome outcome;
    QWidget host;
    host.resize(390, 844);
    host.show();
    VextilFace *face = VextilFace::sharedInstance();
    face->setRootController(&host);
    face->presentTutorial(false);

    bool closing = false;
    QPointer<VextilFaceCameraViewController> camera;
    PaintProbe probe(watch);
    // The instruction line tells the toolkit when it painted; other labels' paints record nothing.
    const auto probeLabels = [&] {
        for (QLabel *label : camera->findChildren<QLabel *>())
            if (label->metaObject()->indexOfSignal("painted()") >= 0)
                QObject::connect(label, SIGNAL(painted()), &probe, SLOT(painted()), Qt::UniqueConnection);
    };
    std::function<void()> request = [&] {
        face->requestFace([&](bool, std::optional<VextilError>) {
            if (closing)
                return QCoreApplication::exit(0);
            // Nothing here ends the flow on purpose: if it ends anyway, keep the camera going.
            ++outcome.flowsEnded;
            watch.harvest();
            if (camera)
                outcome.delays += camera->captureStats().instructionDelayMs;
            QTimer::singleShot(0, request);
        });
        camera = face->faceCameraViewController();
        if (camera) {
            watch.attach(camera->findChild<VextilCaptureSession *>());
            probeLabels();
        }
    };
    request();

    QElapsedTimer elapsed;
    elapsed.start();
    QPointer<VextilConfirmController> answered;
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, [&] {
        if (closing)
            return;
        if (reel.ended || elapsed.elapsed() > giveUpMs) {
            outcome.finished = reel.ended;
            watch.harvest();
            if (camera) {
                const VextilCaptureStats stats = camera->captureStats();
                outcome.delays += stats.instructionDelayMs;
                outcome.frames = stats;
            }
            closing = true;
            if (camera)
                camera->didCancel();
            else
                QCoreApplication::exit(0);
            return;
        }
        // A completed capture: the user asks for another photo, and the camera goes on.
        VextilConfirmController *review = face->confirmController();
        if (review && review->isVisible() && review != answered) {
            for (QAbstractButton *button : review->findChildren<QAbstractButton *>())
                if (button->isVisible() && button->text() == toolkitText("No, take another photo.")) {
                    answered = review;
                    ++outcome.completions;
                    Q_EMIT button->pressed();
                    break;
                }
        }
        if (review && !review->isVisible())
            answered = nullptr;
    });
    poll.start(50);
    QCoreApplication::exec();
    return outcome;
}

// The Qt Quick face, as a QML host runs it: FaceCapture in a window of its own.
Outcome runQuick(const Reel &reel, Watch &watch, int giveUpMs)
{
    Outcome outcome;
    QQmlApplicationEngine engine;
    engine.loadData("import QtQuick\nimport VextilToolkit\n"
                    "Window { width: 390; height: 844; visible: true\n"
                    "  FaceCapture { objectName: \"capture\"; presentTutorial: false } }");
    auto *window =
        engine.rootObjects().isEmpty() ? nullptr : qobject_cast<QQuickWindow *>(engine.rootObjects().first());
    auto *capture = window ? window->findChild<QQuickItem *>(QStringLiteral("capture")) : nullptr;
    if (!capture) {
        std::fprintf(stderr, "the QML face did not load\n");
        return outcome;
    }

    QPointer<QObject> session;
    QMetaObject::Connection swapped;
    const auto sessionNow = [&]() -> QObject * {
        auto *screen = capture->property("cameraScreen").value<QQuickItem *>();
        return screen ? screen->property("session").value<QObject *>() : nullptr;
    };
    const auto request = [&] {
        QMetaObject::invokeMethod(capture, "requestFace");
        session = sessionNow();
        if (session)
            watch.attach(session->findChild<VextilCaptureSession *>());
        // After the camera screen's own frameSwapped handler, which is made with the screen.
        QObject::disconnect(swapped);
        swapped = QObject::connect(window, &QQuickWindow::frameSwapped, window, [&] { watch.painted(); });
    };
    const auto delaysOf = [](QObject *quick) {
        auto *core = quick ? quick->findChild<VextilCaptureSession *>() : nullptr;
        return core ? core->captureStats().instructionDelayMs : QList<double>();
    };
    request();

    bool closing = false;
    QElapsedTimer elapsed;
    elapsed.start();
    QPointer<QQuickItem> answered;
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, [&] {
        if (closing) {
            if (!capture->property("cameraScreen").value<QQuickItem *>())
                QCoreApplication::exit(0);
            return;
        }
        if (reel.ended || elapsed.elapsed() > giveUpMs) {
            outcome.finished = reel.ended;
            watch.harvest();
            if (session) {
                // The figures as the QML face reports them to its host.
                const QVariantMap stats = session->property("stats").toMap();
                outcome.p50 = stats.value(QStringLiteral("p50InstructionDelayMs")).toDouble();
                outcome.p95 = stats.value(QStringLiteral("p95InstructionDelayMs")).toDouble();
                const QList<double> delays = delaysOf(session);
                if (delays.size() != stats.value(QStringLiteral("instructionChanges")).toInt())
                    std::fprintf(stderr, "the session's delays and the QML figures disagree\n");
                outcome.delays += delays;
                if (auto *core = session->findChild<VextilCaptureSession *>())
                    outcome.frames = core->captureStats();
                QMetaObject::invokeMethod(session.data(), "finish", Q_ARG(bool, false));
            }
            closing = true;
            return;
        }
        if (!session || !capture->property("cameraScreen").value<QQuickItem *>()) {
            // The flow ended on its own: keep the camera going.
            if (capture->property("stage").toInt() == 0) {
                ++outcome.flowsEnded;
                watch.harvest();
                request();
            }
            return;
        }
        // A completed capture: the user asks for another photo, and the camera goes on.
        auto *review = capture->property("reviewScreen").value<QQuickItem *>();
        if (review && review != answered) {
            answered = review;
            ++outcome.completions;
            QMetaObject::invokeMethod(review, "answer", Q_ARG(QVariant, false));
        }
    });
    poll.start(50);
    QCoreApplication::exec();
    return outcome;
}

double loadAverage()
{
    QFile file(QStringLiteral("/proc/loadavg"));
    return file.open(QIODevice::ReadOnly) ? file.readAll().split(' ').value(0).toDouble() : -1;
}

int runOne(int argc, char **argv, const QString &face, const QString &load, int cycles)
{
    QApplication app(argc, argv);
    const auto film = makeFilm(cycles);
    if (!film) {
        std::fprintf(stderr, "cannot read the sample clip's neutral face from %s\n", VEXTIL_SELFIE_CLIP);
        return 1;
    }
    const double loadBefore = loadAverage();
    auto shared = std::make_shared<const Film>(*film);
    auto reel = std::make_shared<Reel>();
    VextilToolkitSettings *settings = VextilToolkitSettings::sharedInstance();
    settings->initWithAuthKey(QStringLiteral("felt-delay-bench"));
    settings->setFrameSourceFactory([shared, reel] { return std::make_unique<FaceThenGrey>(shared, reel); });

    const bool busy = load == QLatin1String("busy");
    Spinners spinners(busy ? std::max(1u, std::thread::hardware_concurrency()) : 0u);
    Watch watch;
    const int giveUpMs = cycles * (kCycleFrames * 1000 / kFramesPerSecond) + 30000;
    const bool widgets = face == QLatin1String("widgets");
    const Outcome outcome = widgets ? runWidgets(*reel, watch, giveUpMs) : runQuick(*reel, watch, giveUpMs);
    report(widgets ? "widgets" : "qml", busy ? "busy" : "idle", outcome, watch, *reel, *film);
    std::printf("    load average before the run %.2f%s\n", loadBefore,
                busy ? qPrintable(QStringLiteral(", %1 spinning threads").arg(spinners.count())) : "");
    if (!outcome.finished) {
        std::printf("    the run gave up before the camera had played every cycle\n");
        return 1;
    }
    return 0;
}

}  // namespace

int main(int argc, char **argv)
{
    // Headless unless a display is there, and Qt Quick drawn as the tests draw it.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") && qEnvironmentVariableIsEmpty("DISPLAY")
        && qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    if (qEnvironmentVariableIsEmpty("QT_QUICK_BACKEND"))
        qputenv("QT_QUICK_BACKEND", "software");

    // One run, in this process: --run FACE LOAD CYCLES.
    if (argc == 5 && QByteArray(argv[1]) == "--run")
        return runOne(argc, argv, QString::fromLatin1(argv[2]), QString::fromLatin1(argv[3]), std::atoi(argv[4]));

    int cycles = 20;
    QStringList faces{QStringLiteral("widgets"), QStringLiteral("qml")},
        loads{QStringLiteral("idle"), QStringLiteral("busy")};
    for (int i = 1; i < argc; ++i) {
        const QString arg = QString::fromLocal8Bit(argv[i]);
        bool number = false;
        const int value = arg.toInt(&number);
        if (number && value > 0)
            cycles = value;
        else if (arg == QLatin1String("widgets") || arg == QLatin1String("qml"))
            faces = {arg};
        else if (arg == QLatin1String("idle") || arg == QLatin1String("busy"))
            loads = {arg};
        else {
            std::fprintf(stderr, "usage: %s [CYCLES] [widgets|qml] [idle|busy]\n", argv[0]);
            return 2;
        }
    }
    QCoreApplication app(argc, argv);
    std::printf(
        "felt delay: %d cycles of the face for 1.5 s and grey for 1 s at %d fps; platform %s, Qt Quick %s, %u cores\n",
        cycles, kFramesPerSecond, qgetenv("QT_QPA_PLATFORM").constData(), qgetenv("QT_QUICK_BACKEND").constData(),
        std::thread::hardware_concurrency());
    std::fflush(stdout);
    int failures = 0;
    for (const QString &face : faces)
        for (const QString &load : loads) {
            QProcess run;
            run.setProcessChannelMode(QProcess::ForwardedChannels);
            run.start(QCoreApplication::applicationFilePath(),
                      {QStringLiteral("--run"), face, load, QString::number(cycles)});
            if (!run.waitForFinished(-1) || run.exitStatus() != QProcess::NormalExit || run.exitCode() != 0) {
                std::printf("felt delay %s %s: the run failed\n", qPrintable(face), qPrintable(load));
                ++failures;
            }
        }
    return failures ? 1 : 0;
}

#include "felt_delay_bench.moc"
