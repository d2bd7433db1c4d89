#include "QuickDriver.h"

#include <QCoreApplication>
#include <QDir>
#include <QQuickItem>

#include <cstdio>

namespace {

constexpr int kGiveUpMs = 90000;

// The toolkit's text as the user sees it, in the language its translation put in force.
QString toolkitText(const char *english) { return QCoreApplication::translate("VextilToolkit", english); }

// What the camera screen tells a user whose face it cannot use yet.
constexpr const char *kGuidance[] = {"Move closer", "Move back", "Center your face", "Find more light", "Hold still"};

// A shown button with that title: an item with a "text" and a pressed() signal.
QQuickItem *shownButton(QQuickItem *item, const QString &title)
{
    if (!item->isVisible())
        return nullptr;
    if (item->property("text").toString() == title && item->metaObject()->indexOfSignal("pressed()") >= 0)
        return item;
    for (QQuickItem *child : item->childItems())
        if (QQuickItem *found = shownButton(child, title))
            return found;
    return nullptr;
}

}  // namespace

QuickDriver::QuickDriver(QQuickWindow *window, QString screenshots, QObject *parent)
    : QObject(parent), m_window(window), m_capture(window->property("capture").value<QObject *>()), m_screenshots(std::move(screenshots))
{
    m_poll.setInterval(100);
    connect(&m_poll, &QTimer::timeout, this, &QuickDriver::poll);
    connect(window, SIGNAL(captureEnded(bool)), this, SLOT(captureEnded(bool)));
    connect(window, SIGNAL(sendEnded(bool)), this, SLOT(sendEnded(bool)));
}

void QuickDriver::start()
{
    QDir().mkpath(m_screenshots);
    m_sinceStart.start();
    // The window's first frame, then the selfie.
    QTimer::singleShot(300, this, [this] {
        shoot(QStringLiteral("0-host"));
        m_figures.idleMiB = DemoFigures::residentMiB();  // the window drawn, the capture not started
        QMetaObject::invokeMethod(m_window, "takeSelfie");
        m_poll.start();
    });
}

bool QuickDriver::once(const QString &step)
{
    if (m_done.contains(step))
        return false;
    m_done.insert(step);
    return true;
}

bool QuickDriver::press(const QString &title)
{
    QQuickItem *button = shownButton(m_window->contentItem(), title);
    if (button)
        QMetaObject::invokeMethod(button, "pressed");
    return button;
}

QObject *QuickDriver::session() const
{
    QObject *camera = m_capture->property("cameraScreen").value<QObject *>();
    return camera ? camera->property("session").value<QObject *>() : nullptr;
}

void QuickDriver::shoot(const QString &name)
{
    const QString path = QDir(m_screenshots).filePath(name + QStringLiteral(".png"));
    if (m_window->grabWindow().save(path))
        std::printf("screenshot: %s\n", qPrintable(path));
}

void QuickDriver::poll()
{
    if (m_sinceStart.elapsed() > kGiveUpMs) {
        std::printf("gave up after %d s: the capture did not complete\n", kGiveUpMs / 1000);
        return finish(1);
    }
    QObject *capture = session();
    if (!capture)
        return;
    // The tutorial: looked at, then answered.
    if (capture->property("tutorialShown").toBool()) {
        if (m_sinceStart.elapsed() > 1500 && shownButton(m_window->contentItem(), toolkitText("OK, I got it")) && once(QStringLiteral("tutorial"))) {
            shoot(QStringLiteral("1-tutorial"));
            press(toolkitText("OK, I got it"));
        }
        return;
    }
    // An instruction for the user, shot once it has been on screen for a moment.
    const QString instruction = capture->property("instruction").toString();
    for (const char *guidance : kGuidance)
        if (instruction == toolkitText(guidance) && once(instruction))
            QTimer::singleShot(300, this, [this, guidance] {
                shoot(QStringLiteral("2-camera-") + QString::fromLatin1(guidance).toLower().replace(u' ', u'-'));
            });
    if (capture->property("progress").toDouble() >= 0.4 && once(QStringLiteral("collecting")))
        QTimer::singleShot(550, this, [this] { shoot(QStringLiteral("2-camera-collecting")); });  // once the bar has moved
    if (capture->property("smilePrompt").toBool() && once(QStringLiteral("smile")))
        shoot(QStringLiteral("3-camera-smile"));
    if (m_capture->property("reviewScreen").value<QObject *>() && once(QStringLiteral("review"))) {
        const QVariantMap stats = capture->property("stats").toMap();
        m_figures.delivered = stats.value(QStringLiteral("delivered")).toInt();
        m_figures.analysed = stats.value(QStringLiteral("analysed")).toInt();
        m_figures.dropped = stats.value(QStringLiteral("dropped")).toInt();
        m_figures.meanMs = stats.value(QStringLiteral("meanAnalysisMs")).toDouble();
        m_figures.p95Ms = stats.value(QStringLiteral("p95AnalysisMs")).toDouble();
        m_figures.instructionChanges = stats.value(QStringLiteral("instructionChanges")).toInt();
        m_figures.delayP50Ms = stats.value(QStringLiteral("p50InstructionDelayMs")).toDouble();
        m_figures.delayP95Ms = stats.value(QStringLiteral("p95InstructionDelayMs")).toDouble();
        if (const double seconds = capture->property("secondsToCompletion").toDouble(); seconds >= 0)
            m_figures.secondsToCompletion = seconds;
        // Let the user look for a moment, then accept.
        QTimer::singleShot(1200, this, [this] {
            shoot(QStringLiteral("4-review"));
            press(toolkitText("Yes, send"));
        });
    }
}

void QuickDriver::captureEnded(bool success)
{
    QTimer::singleShot(200, this, [this, success] {
        shoot(QStringLiteral("5-host-captured"));
        if (!success) {
            std::printf("capture failed: %s\n", qPrintable(m_window->property("result").toString()));
            return finish(1);
        }
        m_upload.start();
        QMetaObject::invokeMethod(m_window, "send");
    });
}

void QuickDriver::sendEnded(bool sent)
{
    const qint64 uploadMs = m_upload.elapsed();
    QTimer::singleShot(200, this, [this, sent, uploadMs] {
        shoot(QStringLiteral("6-host-sent"));
        std::printf("%s\n", qPrintable(m_window->property("result").toString()));
        m_figures.print(sent, uploadMs);
        finish(sent ? 0 : 1);
    });
}

void QuickDriver::finish(int code)
{
    m_poll.stop();
    std::fflush(stdout);
    QCoreApplication::exit(code);
}
