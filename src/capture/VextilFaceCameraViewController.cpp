#include <VextilToolkit/VextilFaceCameraViewController.h>

#include <VextilToolkit/VextilCameraAuthorization.h>
#include <VextilToolkit/VextilToolkitSettings.h>

#include "camera/VextilCaptureQueue.h"
#include "camera/VextilUprightFrame.h"
#include "capture/VextilCameraWatchdog.h"
#include "capture/VextilFaceCameraView.h"
#include "capture/VextilFaceProgressBoxView.h"
#include "core/VextilMainQueue.h"
#include "core/VextilPortraitRegion.h"
#include "core/VextilTexts.h"
#include "tutorial/VextilTutorialFace.h"
#include "ui/NavigationBarView.h"
#include "ui/VextilFrame.h"

#include <QCoreApplication>
#include <QPushButton>

#include <algorithm>

namespace {
// The longer side of the copy the model judges and the preview shows: the view's own pixels,
// within these bounds. Faces fill much of the view, and the networks read a fraction of it.
constexpr int kSmallestAnalysedSide = 720, kLargestAnalysedSide = 1080;
qint64 nowNs() { return std::chrono::steady_clock::now().time_since_epoch().count(); }
}  // namespace

VextilFaceCameraViewController::VextilFaceCameraViewController(QWidget *parent) : VextilBaseViewController(parent)
{
    QPalette palette = this->palette();
    palette.setColor(QPalette::Window, Qt::black);
    setPalette(palette);
}

VextilFaceCameraViewController::~VextilFaceCameraViewController()
{
    // Drain the frame path before the views and the model it uses go.
    if (m_source)
        m_source->stop();
    if (m_captureQueue)
        m_captureQueue->shutdown();
}

void VextilFaceCameraViewController::hideEvent(QHideEvent *) { stopSource(); }

void VextilFaceCameraViewController::showEvent(QShowEvent *)
{
    // Back from a minimised window or another desktop: the capture goes on where it was.
    if (m_captureActive && !isBeingDismissed())
        startSource();
}

void VextilFaceCameraViewController::setModel(VextilFaceCameraModel *model)
{
    if (m_model && m_model->parent() == this && m_model != model)
        m_model->deleteLater();
    m_model = model;
    if (model && !model->parent())
        model->setParent(this);
}

void VextilFaceCameraViewController::setFrameSource(std::unique_ptr<VextilFrameSource> source)
{
    if (m_source)
        m_source->stop();
    m_source = std::move(source);
    if (m_watchdog)
        m_watchdog->setSource(m_source.get());
}

void VextilFaceCameraViewController::viewDidLoad()
{
    setModel(new VextilFaceCameraModel(this));  // a fresh model for this screen
    m_model->setDelegate(this);
    setupView();
    setupConstraints();
    setupCamera();
    // The state machine runs on the capture queue, resets included.
    m_model->setStateQueue(
        [queue = m_captureQueue.get()](std::function<void()> work) { queue->dispatch(std::move(work)); });
    if (m_presentTutorial)
        presentTutorialPopUp();
}

void VextilFaceCameraViewController::viewWillAppear(bool animated)
{
    VextilBaseViewController::viewWillAppear(animated);
    m_model->resetState();
    setupColors();
    // A moment later, and only if the screen is staying: when the flow closes, the review goes
    // first and this screen appears again just before it is dismissed itself.
    onGuiThread([this] {
        if (isBeingDismissed())
            return;
        startCamera();
        checkAuthorization();
    });
}

void VextilFaceCameraViewController::viewDidAppear(bool)
{
    m_model->setViewSize(m_faceCameraView ? QSizeF(m_faceCameraView->size()) : QSizeF(0, 0));
    focusStatus();
}

void VextilFaceCameraViewController::focusStatus()
{
    // The status holds the focus while the capture runs, so that its changes are spoken; the
    // tutorial keeps it while it is up and hands it back as it closes. A moment later, and only
    // if the screen is staying (see viewWillAppear).
    onGuiThread([this] {
        if (!m_isPresentingTutorial && m_faceProgressBoxView && isVisible() && !isBeingDismissed())
            m_faceProgressBoxView->statusView()->setFocus(Qt::OtherFocusReason);
    });
}

void VextilFaceCameraViewController::setupView()
{
    setAccessibleName(VextilTexts::tr("Register selfie"));
    m_navigationView = new NavigationBarView(VextilTexts::tr("Register selfie"), true, this);
    connect(m_navigationView->helpButton(), &QAbstractButton::pressed, this,
            &VextilFaceCameraViewController::presentTutorialPopUp);
    connect(m_navigationView->backButton(), &QAbstractButton::pressed, this,
            &VextilFaceCameraViewController::didCancel);
    m_faceCameraView = new VextilFaceCameraView(this);
    m_faceCameraView->videoPreviewLayer()->setMirrored(VextilToolkitSettings::sharedInstance()->mirrorsPreview());
    m_faceProgressBoxView = new VextilFaceProgressBoxView(this);
    m_modelText = m_model->getFirstMessageText();
    m_faceProgressBoxView->updateInstructionsLabelWithText(m_modelText);
}

namespace {
constexpr double kWidestCameraView = 0.9;  // width / height
}

void VextilFaceCameraViewController::setupConstraints()
{
    if (!m_navigationView)
        return;
    const QRectF view = portraitRect();
    const QRectF bar =
        VextilFrame().top(view.top()).width(view.width()).centerX(view.center().x()).height(view.height() * 0.09).rect();
    const QRectF box =
        VextilFrame().width(view.width()).centerX(view.center().x()).height(150).bottom(view.bottom()).rect();
    m_navigationView->setGeometry(bar.toRect());
    m_faceProgressBoxView->setGeometry(box.toRect());
    // Between the bar and the box, and never much wider than tall: the face frame is drawn to
    // the view's width, and in a wider view its top and bottom would be cut off.
    const QRectF between = VextilFrame().top(bar.bottom()).width(view.width()).centerX(view.center().x()).bottom(box.top()).rect();
    m_faceCameraView->setGeometry(
        VextilPortraitRegion::of(between.size(), 0, kWidestCameraView).translated(between.topLeft()).toRect());
    const QSize shown = m_faceCameraView->size() * devicePixelRatioF();
    m_analysedSide = std::clamp(std::max(shown.width(), shown.height()), kSmallestAnalysedSide, kLargestAnalysedSide);
    if (m_model && m_faceCameraView->isVisible())
        m_model->setViewSize(QSizeF(m_faceCameraView->size()));
}

void VextilFaceCameraViewController::setupColors()
{
    // The camera screen's bar is plain white, whatever the colour scheme says.
    m_navigationView->setTitleLabelTintColor(Qt::white);
    m_navigationView->setBackButtonTintColor(Qt::white);
    m_navigationView->setHelpButtonTintColor(Qt::white);
}

void VextilFaceCameraViewController::setupCamera()
{
    if (!m_source)
        m_source = VextilFrameSource::createDefault(VextilToolkitSettings::sharedInstance()->camera());
    m_captureQueue =
        std::make_unique<VextilCaptureQueue>([this](const VextilCameraFrame &frame) { captureOutput(frame); });
    m_captureQueue->start();
    // Only the newest frame waits; a frame is converted once it is taken for analysis.
    VextilCaptureQueue *queue = m_captureQueue.get();
    m_watchdog = new VextilCameraWatchdog(m_source.get(), this);
    connect(m_watchdog, &VextilCameraWatchdog::healthChanged, this, &VextilFaceCameraViewController::showInstructions);
    m_source->setFrameHandler([queue, watchdog = m_watchdog](const VextilCameraFrame &frame) {
        watchdog->noteFrame();
        queue->post(frame);
    });
}

void VextilFaceCameraViewController::startCamera()
{
    m_captureActive = true;
    startSource();
}

void VextilFaceCameraViewController::startSource()
{
    if (!m_source || !isVisible())
        return;
    if (!m_source->isRunning())
        m_source->start();
    m_watchdog->watch();
}

void VextilFaceCameraViewController::stopSource()
{
    if (m_watchdog)
        m_watchdog->rest();
    if (m_source)
        m_source->stop();
}

void VextilFaceCameraViewController::showInstructions()
{
    const QString fault = VextilCameraWatchdog::message(m_watchdog->health());
    m_faceProgressBoxView->updateInstructionsLabelWithText(fault.isEmpty() ? m_modelText : fault);
}

void VextilFaceCameraViewController::captureOutput(const VextilCameraFrame &frame)
{
    if (m_isPresentingTutorial || !m_model)
        return;  // ignored, so never converted
    // What the user sees is what the model judges and the store keeps: upright, cropped to the
    // view. The model judges a small copy; the whole picture is made only for a frame it keeps.
    const QSizeF view = m_model->viewSize();
    const QImage analysed = VextilUprightFrame::scaledImage(frame, view, m_analysedSide);
    if (analysed.isNull())
        return;
    showFrame(analysed);
    m_model->processFace(analysed, [&frame, view] { return VextilUprightFrame::image(frame, view); });
}

void VextilFaceCameraViewController::showFrame(const QImage &frame)
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
        m_faceCameraView->videoPreviewLayer()->setFrame(newest);
    });
}

void VextilFaceCameraViewController::onGuiThread(std::function<void()> work)
{
    VextilMainQueue::dispatchAsync(this, std::move(work));
}

void VextilFaceCameraViewController::updateMessageText(const QString &text)
{
    onGuiThread([this, text] {
        m_modelText = text;
        if (m_watchdog->health() == VextilCameraWatchdog::Health::Live)
            m_faceProgressBoxView->updateInstructionsLabelWithText(text);
    });
}

void VextilFaceCameraViewController::updateProgressView(double progress)
{
    if (progress > 0 && m_firstNeutralNs == 0)
        m_firstNeutralNs = nowNs();
    onGuiThread([this, progress] { m_faceProgressBoxView->updateProgress(progress); });
}

void VextilFaceCameraViewController::isProgressBarHidden(bool hidden)
{
    onGuiThread([this, hidden] { m_faceProgressBoxView->isProgressBarHidden(hidden); });
}

void VextilFaceCameraViewController::changeMaskState()
{
    onGuiThread([this] { m_faceCameraView->changeMaskState(); });
}

void VextilFaceCameraViewController::isPopupViewHidden(bool hidden)
{
    onGuiThread([this, hidden] {
        m_faceCameraView->isPopupHidden(hidden);
        m_faceProgressBoxView->setSmilePrompt(!hidden);
    });
}

VextilCaptureStats VextilFaceCameraViewController::captureStats() const
{
    return m_captureQueue ? m_captureQueue->stats() : VextilCaptureStats();
}

std::optional<double> VextilFaceCameraViewController::secondsToCompletion() const
{
    if (m_firstNeutralNs == 0 || m_completedNs == 0)
        return std::nullopt;
    return double(m_completedNs - m_firstNeutralNs) / 1e9;
}

void VextilFaceCameraViewController::checkAuthorization()
{
    switch (VextilCameraAuthorization::authorizationStatus()) {
    case VextilCameraAuthorization::Authorized: return;
    case VextilCameraAuthorization::Restricted: dismissController(false); return;
    case VextilCameraAuthorization::NotDetermined: {
        m_watchdog->rest();  // no frames until the user answers; watched again once granted
        QPointer<VextilFaceCameraViewController> self(this);
        VextilCameraAuthorization::requestAccess([self](bool granted) {
            // The answer may come on any thread; the screen's work belongs on the GUI thread.
            VextilMainQueue::dispatchAsync(self, [self, granted] {
                if (granted)
                    self->startCamera();
                else
                    self->cameraDenied();
            });
        });
        return;
    }
    default: cameraDenied();
    }
}

void VextilFaceCameraViewController::cameraDenied()
{
    m_watchdog->rest();  // the alert explains; no camera fault on top of it
    // These texts are fixed, not translated.
    auto *alert = new QMessageBox(QMessageBox::Warning, QStringLiteral("Error"),
                                  QStringLiteral("You need to allow this app to access this device's camera."),
                                  QMessageBox::NoButton, this);
    alert->setAttribute(Qt::WA_DeleteOnClose);
    alert->setWindowModality(Qt::WindowModal);
    QPushButton *settings = alert->addButton(QStringLiteral("Settings"), QMessageBox::AcceptRole);
    QPushButton *cancel = alert->addButton(QStringLiteral("Cancel"), QMessageBox::DestructiveRole);
    connect(settings, &QAbstractButton::clicked, this, [] { VextilCameraAuthorization::openSettings(); });
    connect(cancel, &QAbstractButton::clicked, this, [this] { dismissController(false); });
    m_alert = alert;
    alert->open();
}

void VextilFaceCameraViewController::presentTutorialPopUp()
{
    m_isPresentingTutorial = true;
    auto *tutorial = new VextilTutorialFace(this);
    tutorial->setCompletionHandler([self = QPointer<VextilFaceCameraViewController>(this)] {
        if (self) {
            self->m_isPresentingTutorial = false;
            self->focusStatus();
        }
    });
    tutorial->setGeometry(rect());
    tutorial->fadeIn(100);
}

void VextilFaceCameraViewController::dismissController(bool success)
{
    if (success && m_completedNs == 0)
        m_completedNs = nowNs();
    QPointer<VextilFaceCameraViewController> self(this);
    VextilMainQueue::dispatchAsync(this, [self, success] {
        self->m_captureActive = false;
        self->stopSource();
        if (self->m_model)
            self->m_model->resetState();
        if (auto *delegate = dynamic_cast<VextilFaceCameraControllerDelegate *>(self->m_delegate.data()))
            delegate->didFinishedCaptureWithSuccess(success);
    });
}
