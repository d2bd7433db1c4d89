#include "capture/VextilCaptureSession.h"

#include <VextilToolkit/VextilCameraAuthorization.h>
#include <VextilToolkit/VextilToolkitSettings.h>

#include "camera/VextilCaptureQueue.h"
#include "camera/VextilUprightFrame.h"
#include "capture/VextilCameraWatchdog.h"
#include "core/VextilMainQueue.h"

#include <QGuiApplication>

#include <algorithm>
#include <chrono>

#if defined(__GLIBC__)
#include <malloc.h>
#endif

namespace {
// The longer side of the copy the model judges and the preview shows: the view's own pixels,
// within these bounds. Faces fill much of the view, and the networks read a fraction of it.
constexpr int kSmallestAnalysedSide = 720, kLargestAnalysedSide = 1080;
qint64 nowNs() { return std::chrono::steady_clock::now().time_since_epoch().count(); }

// Setting the screen up (reading the networks, drawing and closing the tutorial) and each frame's
// copies free megabytes scattered through malloc's arenas, which glibc keeps resident between the
// blocks still in use; the kept pictures seldom fit those holes. Their pages go back to the system
// as the analysis starts and after each kept picture (about half a millisecond, seven times).
void giveBackFreedPages()
{
#if defined(__GLIBC__)
    malloc_trim(0);
#endif
}
}  // namespace

VextilCaptureSession::VextilCaptureSession(QObject *parent) : QObject(parent) {}

VextilCaptureSession::~VextilCaptureSession()
{
    // Drain the frame path before the model it feeds goes.
    if (m_source)
        m_source->stop();
    if (m_captureQueue)
        m_captureQueue->shutdown();
}

void VextilCaptureSession::setModel(VextilFaceCameraModel *model)
{
    if (m_model && m_model->parent() == this && m_model != model)
        m_model->deleteLater();
    m_model = model;
    if (model && !model->parent())
        model->setParent(this);
}

void VextilCaptureSession::setFrameSource(std::unique_ptr<VextilFrameSource> source)
{
    if (m_source)
        m_source->stop();
    m_source = std::move(source);
    if (m_watchdog)
        m_watchdog->setSource(m_source.get());
}

void VextilCaptureSession::load()
{
    setModel(new VextilFaceCameraModel(this));  // a fresh model for this screen
    m_model->setDelegate(this);
    m_modelText = m_model->getFirstMessageText();
    if (!m_source) {
        const auto factory = VextilToolkitSettings::sharedInstance()->frameSourceFactory();
        m_source = factory ? factory() : nullptr;
    }
    if (!m_source)  // no host pipeline, or one that made nothing
        m_source = VextilFrameSource::createDefault(VextilToolkitSettings::sharedInstance()->camera());
    m_captureQueue =
        std::make_unique<VextilCaptureQueue>([this](const VextilCameraFrame &frame) { captureOutput(frame); });
    m_captureQueue->start();
    // Only the newest frame waits; a frame is converted once it is taken for analysis.
    VextilCaptureQueue *queue = m_captureQueue.get();
    m_watchdog = new VextilCameraWatchdog(m_source.get(), this);
    connect(m_watchdog, &VextilCameraWatchdog::healthChanged, this, [this] { Q_EMIT instructionChanged(instruction()); });
    m_source->setFrameHandler([queue, watchdog = m_watchdog](const VextilCameraFrame &frame) {
        watchdog->noteFrame();
        queue->post(frame);
    });
    // The state machine runs on the capture queue, resets included.
    m_model->setStateQueue([queue](std::function<void()> work) { queue->dispatch(std::move(work)); });
    if (auto *app = qobject_cast<QGuiApplication *>(QCoreApplication::instance()))
        connect(app, &QGuiApplication::applicationStateChanged, this, &VextilCaptureSession::applicationStateChanged,
                Qt::UniqueConnection);
}

void VextilCaptureSession::applicationStateChanged(Qt::ApplicationState state)
{
    // Back from the system's settings, perhaps with access granted: look again.
    if (state == Qt::ApplicationActive && m_denied && m_shown && isStaying())
        checkAuthorization();
}

void VextilCaptureSession::appear()
{
    m_denied = false;
    m_scratchGivenBack = false;
    if (m_model)
        m_model->resetState();
    // A moment later, and only if the screen is staying: when the flow closes, the review goes
    // first and the camera screen appears again just before it goes itself. The camera opens
    // once access is granted: some platforms cannot open it before.
    onGuiThread([this] {
        if (isStaying())
            checkAuthorization();
    });
}

void VextilCaptureSession::setShown(bool shown)
{
    m_shown = shown;
    if (!shown)
        stopSource();
    else if (m_captureActive && isStaying())
        startSource();  // back from a minimised window or another desktop
}

void VextilCaptureSession::setViewSize(QSizeF size, qreal devicePixelRatio)
{
    const QSizeF shown = size * devicePixelRatio;
    m_analysedSide = std::clamp(int(std::max(shown.width(), shown.height())), kSmallestAnalysedSide, kLargestAnalysedSide);
    if (m_model)
        m_model->setViewSize(size);
}

void VextilCaptureSession::startCamera()
{
    m_captureActive = true;
    startSource();
}

void VextilCaptureSession::startSource()
{
    if (!m_source || !m_shown)
        return;
    if (!m_source->isRunning())
        m_source->start();
    m_watchdog->watch();
}

void VextilCaptureSession::stopSource()
{
    if (m_watchdog)
        m_watchdog->rest();
    if (m_source)
        m_source->stop();
}

QString VextilCaptureSession::instruction() const
{
    const QString fault = m_watchdog ? VextilCameraWatchdog::message(m_watchdog->health()) : QString();
    return fault.isEmpty() ? m_modelText : fault;
}

void VextilCaptureSession::captureOutput(const VextilCameraFrame &frame)
{
    if (m_tutorialShown || !m_model)
        return;  // ignored, so never converted
    // What the user sees is what the model judges and the store keeps: upright, cropped to the
    // view. The model judges a small copy; the whole picture is made only for a frame it keeps.
    const QSizeF view = m_model->viewSize();
    const QImage analysed = VextilUprightFrame::scaledImage(frame, view, m_analysedSide);
    if (analysed.isNull())
        return;
    showFrame(analysed);
    bool kept = false;
    m_model->processFace(analysed, [&frame, view, &kept] {
        kept = true;
        return VextilUprightFrame::kept(frame, view);
    });
    // Once the screen has been told what the frame changed, so that it waits for nothing here.
    if (!m_scratchGivenBack.exchange(true) || kept)
        giveBackFreedPages();
}

void VextilCaptureSession::showFrame(const QImage &frame)
{
    {
        std::lock_guard lock(m_previewMutex);
        m_previewFrame = frame;
        if (std::exchange(m_previewQueued, true))
            return;  // the hop already queued shows this newer frame
    }
    onGuiThread([this] {
        QImage newest;
        {
            std::lock_guard lock(m_previewMutex);
            newest = std::exchange(m_previewFrame, QImage());
            m_previewQueued = false;
        }
        Q_EMIT frameReady(newest);
    });
}

void VextilCaptureSession::onGuiThread(std::function<void()> work) { VextilMainQueue::dispatchAsync(this, std::move(work)); }

void VextilCaptureSession::updateMessageText(const QString &text)
{
    // Asked for while a frame is analysed: that frame's delivery starts the felt delay.
    std::optional<VextilInstructionDelay::Clock::time_point> delivered;
    if (m_captureQueue && QThread::currentThread() == m_captureQueue.get())
        delivered = m_captureQueue->deliveredAt();
    onGuiThread([this, text, delivered] {
        const bool changed = text != m_modelText;
        m_modelText = text;
        if (m_watchdog->health() != VextilCameraWatchdog::Health::Live)
            return;
        if (changed && delivered)
            m_instructionDelay.due(text, *delivered);
        Q_EMIT instructionChanged(text);
    });
}

void VextilCaptureSession::updateProgressView(double progress)
{
    if (progress > 0 && m_firstNeutralNs == 0)
        m_firstNeutralNs = nowNs();
    onGuiThread([this, progress] { Q_EMIT progressChanged(progress); });
}

void VextilCaptureSession::isProgressBarHidden(bool hidden)
{
    onGuiThread([this, hidden] { Q_EMIT progressBarHiddenChanged(hidden); });
}

void VextilCaptureSession::changeMaskState()
{
    onGuiThread([this] {
        m_faceFound = !m_faceFound;
        Q_EMIT maskStateChanged(m_faceFound);
    });
}

void VextilCaptureSession::isPopupViewHidden(bool hidden)
{
    onGuiThread([this, hidden] { Q_EMIT smilePromptChanged(!hidden); });
}

void VextilCaptureSession::instructionPainted() { m_instructionDelay.painted(); }

VextilCaptureStats VextilCaptureSession::captureStats() const
{
    VextilCaptureStats stats = m_captureQueue ? m_captureQueue->stats() : VextilCaptureStats();
    stats.instructionDelayMs = m_instructionDelay.delaysMs();
    return stats;
}

std::optional<double> VextilCaptureSession::secondsToCompletion() const
{
    if (m_firstNeutralNs == 0 || m_completedNs == 0)
        return std::nullopt;
    return double(m_completedNs - m_firstNeutralNs) / 1e9;
}

void VextilCaptureSession::checkAuthorization()
{
    switch (VextilCameraAuthorization::authorizationStatus()) {
    case VextilCameraAuthorization::Authorized:
        if (std::exchange(m_denied, false))
            Q_EMIT permissionGranted();
        startCamera();
        return;
    case VextilCameraAuthorization::Restricted: finish(false); return;
    case VextilCameraAuthorization::NotDetermined: {
        QPointer<VextilCaptureSession> self(this);
        VextilCameraAuthorization::requestAccess([self](bool granted) {
            // The answer may come on any thread; the session's work belongs on the GUI thread.
            VextilMainQueue::dispatchAsync(self, [self, granted] {
                if (granted)
                    self->startCamera();
                else
                    self->denied();
            });
        });
        return;
    }
    default: denied();
    }
}

void VextilCaptureSession::denied()
{
    m_watchdog->rest();  // the alert explains; no camera fault on top of it
    m_denied = true;
    Q_EMIT permissionDenied();
}

void VextilCaptureSession::releaseDetector()
{
    if (!m_captureQueue || !m_model)
        return;
    // On the capture thread, after any frame still being judged: the review and the upload
    // that follow need the networks' memory less than a retake needs them at once.
    m_captureQueue->dispatch([detector = m_model->faceDetector()] {
        if (detector)
            detector->releaseResources();
        giveBackFreedPages();
    });
}

void VextilCaptureSession::finish(bool success)
{
    if (success && m_completedNs == 0)
        m_completedNs = nowNs();
    onGuiThread([this, success] {
        m_captureActive = false;
        stopSource();
        if (m_model)
            m_model->resetState();
        releaseDetector();
        Q_EMIT finished(success);
    });
}
