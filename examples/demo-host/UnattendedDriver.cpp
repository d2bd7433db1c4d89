#include "UnattendedDriver.h"

#include "DemoFigures.h"

#include <VextilToolkit/VextilFace.h>

#include <QAbstractButton>
#include <QCoreApplication>
#include <QDir>
#include <QLabel>

#include <algorithm>
#include <cstdio>

namespace {

constexpr int kGiveUpMs = 90000;

// The driver sees the screens as a user does, through what they show: buttons by their titles,
// parts by their accessible names. The toolkit's view classes are its own business.
// The toolkit's text as the user sees it, in the language its translation put in force.
QString toolkitText(const char *english) { return QCoreApplication::translate("VextilToolkit", english); }

QAbstractButton *shownButton(QWidget *screen, const QString &title)
{
    for (QAbstractButton *button : screen->findChildren<QAbstractButton *>())
        if (button->isVisible() && button->text() == title)
            return button;
    return nullptr;
}

QWidget *shownPart(QWidget *screen, const QString &accessibleName)
{
    for (QWidget *part : screen->findChildren<QWidget *>())
        if (part->isVisible() && part->accessibleName() == accessibleName)
            return part;
    return nullptr;
}

bool showsText(QWidget *screen, const QString &text)
{
    for (QLabel *label : screen->findChildren<QLabel *>())
        if (label->isVisible() && label->text() == text)
            return true;
    return false;
}

}  // namespace

UnattendedDriver::UnattendedDriver(DemoWindow *window, QString screenshots, QObject *parent)
    : QObject(parent), m_window(window), m_screenshots(std::move(screenshots))
{
    m_poll.setInterval(100);
    connect(&m_poll, &QTimer::timeout, this, &UnattendedDriver::poll);
    // The host window's screenshots wait a moment for its layout to take the new text.
    connect(window, &DemoWindow::captureEnded, this, [this](bool success) {
        QTimer::singleShot(200, this, [this, success] {
            shoot(QStringLiteral("5-host-captured"), m_window);
            if (!success) {
                std::printf("capture failed: %s\n", qPrintable(m_window->resultText()));
                return finish(1);
            }
            m_upload.start();
            m_window->send();
        });
    });
    connect(window, &DemoWindow::sendEnded, this, [this](bool sent) {
        const qint64 uploadMs = m_upload.elapsed();
        QTimer::singleShot(200, this, [this, sent, uploadMs] {
            shoot(QStringLiteral("6-host-sent"), m_window);
            std::printf("%s\n", qPrintable(m_window->resultText()));
            printFigures(sent, uploadMs);
            finish(sent ? 0 : 1);
        });
    });
}

void UnattendedDriver::start()
{
    QDir().mkpath(m_screenshots);
    // The window's first frame, as the event loop shows it, then the selfie.
    QTimer::singleShot(300, this, [this] {
        m_sinceStart.start();
        shoot(QStringLiteral("0-host"), m_window);
        m_idleMiB = DemoFigures::residentMiB();  // the window up, the capture not started
        m_window->takeSelfie();
        m_poll.start();
    });
}

void UnattendedDriver::shoot(const QString &name, QWidget *widget)
{
    const QString path = QDir(m_screenshots).filePath(name + QStringLiteral(".png"));
    if (widget->window()->grab().save(path))
        std::printf("screenshot: %s\n", qPrintable(path));
}

void UnattendedDriver::poll()
{
    if (m_sinceStart.elapsed() > kGiveUpMs) {
        std::printf("gave up after %d s: the capture did not complete\n", kGiveUpMs / 1000);
        return finish(1);
    }
    VextilFace *face = VextilFace::sharedInstance();
    VextilFaceCameraViewController *camera = face->faceCameraViewController();
    if (!camera || !camera->isVisible())
        return;
    const auto once = [this](const QString &step) { return !std::exchange(m_done, m_done + QSet<QString>{step}).contains(step); };
    // The tutorial: looked at, then answered.
    if (QAbstractButton *gotIt = shownButton(camera, toolkitText("OK, I got it"))) {
        if (m_sinceStart.elapsed() > 1200 && once(QStringLiteral("tutorial"))) {
            shoot(QStringLiteral("1-tutorial"), camera);
            Q_EMIT gotIt->pressed();
        }
        return;
    }
    if (QWidget *progress = shownPart(camera, toolkitText("Progress"));
        progress && progress->property("strokeEnd").toDouble() >= 0.4 && once(QStringLiteral("collecting")))
        shoot(QStringLiteral("2-camera-collecting"), camera);
    if (showsText(camera, toolkitText("SMILE!")) && once(QStringLiteral("smile")))
        shoot(QStringLiteral("3-camera-smile"), camera);

    VextilConfirmController *review = face->confirmController();
    if (review && review->isVisible() && once(QStringLiteral("review"))) {
        m_stats = camera->captureStats();
        m_secondsToCompletion = camera->secondsToCompletion();
        // Let the user look for a moment, then accept.
        QTimer::singleShot(1200, this, [this, review = QPointer<VextilConfirmController>(review)] {
            if (!review)
                return;
            shoot(QStringLiteral("4-review"), review);
            if (QAbstractButton *send = shownButton(review, toolkitText("Yes, send")))
                Q_EMIT send->pressed();
        });
    }
}

void UnattendedDriver::printFigures(bool sent, qint64 uploadMs)
{
    DemoFigures figures;
    figures.delivered = m_stats.delivered;
    figures.analysed = m_stats.analysed;
    figures.dropped = m_stats.dropped;
    figures.analysisMs = m_stats.analysisMs;
    figures.instructionDelayMs = m_stats.instructionDelayMs;
    figures.secondsToCompletion = m_secondsToCompletion;
    figures.idleMiB = m_idleMiB;
    figures.print(sent, uploadMs);
}

void UnattendedDriver::finish(int code)
{
    m_poll.stop();
    std::fflush(stdout);
    QCoreApplication::exit(code);
}
