#include <VextilToolkit/VextilFaceCameraViewController.h>

#include <VextilToolkit/VextilCameraAuthorization.h>
#include <VextilToolkit/VextilToolkitSettings.h>

#include "capture/VextilCaptureSession.h"
#include "widgets/capture/VextilFaceCameraView.h"
#include "widgets/capture/VextilFaceProgressBoxView.h"
#include "core/VextilMainQueue.h"
#include "core/VextilPortraitRegion.h"
#include "core/VextilTexts.h"
#include "widgets/tutorial/VextilTutorialFace.h"
#include "widgets/ui/NavigationBarView.h"
#include "widgets/ui/VextilFrame.h"
#include "widgets/ui/VextilLabel.h"

#include <QCoreApplication>
#include <QPushButton>

VextilFaceCameraViewController::VextilFaceCameraViewController(QWidget *parent)
    : VextilBaseViewController(parent), m_session(new VextilCaptureSession(this))
{
    QPalette palette = this->palette();
    palette.setColor(QPalette::Window, Qt::black);
    setPalette(palette);
    m_session->setStayingCheck([this] { return !isBeingDismissed(); });
}

// The session stops the camera and drains the frame path as it goes, before the views.
VextilFaceCameraViewController::~VextilFaceCameraViewController() { delete m_session; }

void VextilFaceCameraViewController::hideEvent(QHideEvent *) { m_session->setShown(false); }

void VextilFaceCameraViewController::showEvent(QShowEvent *) { m_session->setShown(true); }

VextilFaceCameraModel *VextilFaceCameraViewController::model() const { return m_session->model(); }

void VextilFaceCameraViewController::setModel(VextilFaceCameraModel *model) { m_session->setModel(model); }

void VextilFaceCameraViewController::setFrameSource(std::unique_ptr<VextilFrameSource> source)
{
    m_session->setFrameSource(std::move(source));
}

VextilFrameSource *VextilFaceCameraViewController::frameSource() const { return m_session->frameSource(); }

bool VextilFaceCameraViewController::isPresentingTutorial() const { return m_session->isTutorialShown(); }

void VextilFaceCameraViewController::willEnterForeground() { m_session->checkAuthorization(); }

void VextilFaceCameraViewController::viewDidLoad()
{
    m_session->load();
    setupView();
    connectSession();
    setupConstraints();
    if (m_presentTutorial)
        presentTutorialPopUp();
}

void VextilFaceCameraViewController::connectSession()
{
    VextilFaceProgressBoxView *box = m_faceProgressBoxView;
    connect(m_session, &VextilCaptureSession::instructionChanged, box,
            &VextilFaceProgressBoxView::updateInstructionsLabelWithText);
    connect(box->instructionsLabel(), &VextilLabel::painted, m_session, &VextilCaptureSession::instructionPainted);
    connect(m_session, &VextilCaptureSession::progressChanged, box, &VextilFaceProgressBoxView::updateProgress);
    connect(m_session, &VextilCaptureSession::progressBarHiddenChanged, box, &VextilFaceProgressBoxView::isProgressBarHidden);
    connect(m_session, &VextilCaptureSession::maskStateChanged, this, &VextilFaceCameraViewController::showMaskState);
    connect(m_session, &VextilCaptureSession::smilePromptChanged, this, [this](bool shown) {
        m_faceCameraView->isPopupHidden(!shown);
        m_faceProgressBoxView->setSmilePrompt(shown);
    });
    connect(m_session, &VextilCaptureSession::frameReady, this,
            [this](const QImage &frame) { m_faceCameraView->videoPreviewLayer()->setFrame(frame); });
    connect(m_session, &VextilCaptureSession::permissionDenied, this, &VextilFaceCameraViewController::cameraDenied);
    connect(m_session, &VextilCaptureSession::permissionGranted, this, [this] {
        if (m_alert)
            m_alert->close();
        focusStatus();
    });
    connect(m_session, &VextilCaptureSession::finished, this, [this](bool success) {
        if (auto *delegate = dynamic_cast<VextilFaceCameraControllerDelegate *>(m_delegate.data()))
            delegate->didFinishedCaptureWithSuccess(success);
    });
}

void VextilFaceCameraViewController::showMaskState(bool faceFound)
{
    // The view toggles; the session's state says which way.
    if (m_faceCameraView->isFaceFound() != faceFound)
        m_faceCameraView->changeMaskState();
}

void VextilFaceCameraViewController::viewWillAppear(bool animated)
{
    VextilBaseViewController::viewWillAppear(animated);
    setupColors();
    m_session->appear();
}

void VextilFaceCameraViewController::viewDidAppear(bool)
{
    m_session->setViewSize(m_faceCameraView ? QSizeF(m_faceCameraView->size()) : QSizeF(0, 0), devicePixelRatioF());
    focusStatus();
}

void VextilFaceCameraViewController::focusStatus()
{
    // The status holds the focus while the capture runs, so that its changes are spoken; the
    // tutorial keeps it while it is up and hands it back as it closes. A moment later, and only
    // if the screen is staying (see VextilCaptureSession::appear).
    VextilMainQueue::dispatchAsync(this, [this] {
        if (!m_session->isTutorialShown() && m_faceProgressBoxView && isVisible() && !isBeingDismissed())
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
    m_faceProgressBoxView->updateInstructionsLabelWithText(m_session->instruction());
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
        VextilPortraitRegion::of(between.size(), 0, VextilPortraitRegion::kWidestCameraView).translated(between.topLeft()).toRect());
    if (m_faceCameraView->isVisible())
        m_session->setViewSize(QSizeF(m_faceCameraView->size()), devicePixelRatioF());
}

void VextilFaceCameraViewController::setupColors()
{
    // The camera screen's bar is plain white, whatever the colour scheme says.
    m_navigationView->setTitleLabelTintColor(Qt::white);
    m_navigationView->setBackButtonTintColor(Qt::white);
    m_navigationView->setHelpButtonTintColor(Qt::white);
}

void VextilFaceCameraViewController::startCamera() { m_session->startCamera(); }

void VextilFaceCameraViewController::finishedCapture() { m_session->finishedCapture(); }
void VextilFaceCameraViewController::updateMessageText(const QString &text) { m_session->updateMessageText(text); }
void VextilFaceCameraViewController::updateProgressView(double progress) { m_session->updateProgressView(progress); }
void VextilFaceCameraViewController::isProgressBarHidden(bool hidden) { m_session->isProgressBarHidden(hidden); }
void VextilFaceCameraViewController::changeMaskState() { m_session->changeMaskState(); }
void VextilFaceCameraViewController::isPopupViewHidden(bool hidden) { m_session->isPopupViewHidden(hidden); }

VextilCaptureStats VextilFaceCameraViewController::captureStats() const { return m_session->captureStats(); }

std::optional<double> VextilFaceCameraViewController::secondsToCompletion() const
{
    return m_session->secondsToCompletion();
}

void VextilFaceCameraViewController::cameraDenied()
{
    // These texts are fixed, not translated.
    auto *alert = new QMessageBox(QMessageBox::Warning, QStringLiteral("Error"),
                                  QStringLiteral("You need to allow this app to access this device's camera."),
                                  QMessageBox::NoButton, this);
    alert->setAttribute(Qt::WA_DeleteOnClose);
    alert->setWindowModality(Qt::WindowModal);
    QPushButton *settings = alert->addButton(QStringLiteral("Settings"), QMessageBox::AcceptRole);
    QPushButton *cancel = alert->addButton(QStringLiteral("Cancel"), QMessageBox::DestructiveRole);
    connect(settings, &QAbstractButton::clicked, this, [] { VextilCameraAuthorization::openSettings(); });
    connect(cancel, &QAbstractButton::clicked, m_session, &VextilCaptureSession::cancelPermission);
    m_alert = alert;
    alert->open();
}

void VextilFaceCameraViewController::presentTutorialPopUp()
{
    m_session->setTutorialShown(true);
    auto *tutorial = new VextilTutorialFace(this);
    tutorial->setCompletionHandler([self = QPointer<VextilFaceCameraViewController>(this)] {
        if (self) {
            self->m_session->setTutorialShown(false);
            self->focusStatus();
        }
    });
    tutorial->setGeometry(rect());
    tutorial->fadeIn(100);
}

void VextilFaceCameraViewController::dismissController(bool success) { m_session->finish(success); }
