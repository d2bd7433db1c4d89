#include <VextilToolkit/VextilFace.h>

#include "core/VextilFlowLatch.h"
#include "core/VextilMainQueue.h"
#include "upload/VextilFaceUpload.h"

#include <QApplication>
#include <QThread>

VextilFace::VextilFace() : m_latch(std::make_shared<VextilFlowLatch>()) {}

VextilFace *VextilFace::sharedInstance()
{
    static VextilFace *instance = [] {
        auto *face = new VextilFace;
        VextilMainQueue::adopt(face);
        return face;
    }();
    return instance;
}

QWidget *VextilFace::defaultRoot()
{
    if (QWidget *active = QApplication::activeWindow())
        return active;
    for (QWidget *widget : QApplication::topLevelWidgets())
        if (widget->isVisible() && !qobject_cast<VextilBaseViewController *>(widget))
            return widget;
    return nullptr;
}

void VextilFace::setFrameSourceFactory(std::function<std::unique_ptr<VextilFrameSource>()> factory)
{
    m_frameSourceFactory = std::move(factory);
}

void VextilFace::requestFace(CaptureCallback callback)
{
    if (!m_rootController)
        m_rootController = defaultRoot();
    m_imageResult = std::move(callback);
    presentCameraView();
}

QWidget *VextilFace::topMost(QWidget *root)
{
    // A host's modal dialog is what the user sees: the flow starts over it.
    if (QWidget *modal = QApplication::activeModalWidget();
        modal && modal->isVisible() && !qobject_cast<VextilBaseViewController *>(modal)
        && (!root || modal->window() != root->window()))
        root = modal;
    // Up the screens presented over it; a chain never holds a screen twice, but a walk that
    // met one again would stop rather than go round for ever.
    QList<QWidget *> seen;
    while (VextilBaseViewController *presented = VextilBaseViewController::presentedViewControllerOf(root)) {
        if (seen.contains(presented))
            break;
        seen.append(root);
        root = presented;
    }
    return root;
}

bool VextilFace::isFlowOnShow() const
{
    const auto shown = [](const QWidget *screen) { return screen && !screen->isHidden(); };
    return shown(m_faceCameraViewController) || shown(m_confirmController);
}

bool VextilFace::isFlowOpen() const { return m_faceCameraViewController && m_latch->isOpen(); }

void VextilFace::presentCameraView()
{
    // One flow at a time: a repeated request only replaced the callback, which gets the result
    // of the flow that is open (or closing). The flow goes on where it is; its screen is shown
    // again only when it is not on show.
    if (m_latch->isClosing() || (m_faceCameraViewController && isFlowOnShow()))
        return;
    if (m_faceCameraViewController) {
        if (m_faceCameraViewController->model())
            m_faceCameraViewController->model()->clearData();
    } else {
        m_faceCameraViewController = new VextilFaceCameraViewController;
        m_faceCameraViewController->setModel(new VextilFaceCameraModel);
        if (m_frameSourceFactory)
            m_faceCameraViewController->setFrameSource(m_frameSourceFactory());
        m_latch->open();
        // The screens live in the host's window: when it goes, the flow goes with it.
        connect(m_faceCameraViewController, &QObject::destroyed, this, [this, flow = ++m_flow] { screensDestroyed(flow); });
    }
    m_rootController = topMost(m_rootController);
    m_faceCameraViewController->setPresentTutorial(m_presentTutorial);
    m_faceCameraViewController->setDelegate(this);
    if (!m_rootController) {
        // Nothing to present from: the flow cannot start.
        dismissCamerControlerWithResult(false, VextilError::createVextilSDKErrorWithCode(VextilErrorCodeCaptureFailed));
        return;
    }
    VextilBaseViewController::present(m_rootController, m_faceCameraViewController, true);
}

void VextilFace::didFinishedCaptureWithSuccess(bool success)
{
    if (!isFlowOpen())
        return;  // no flow to report on
    if (success)
        presentConfirmView();
    else
        dismissCamerControlerWithResult(false, VextilError::createVextilSDKErrorWithCode(VextilErrorCodeCaptureFailed));
}

void VextilFace::presentConfirmView()
{
    if (!isFlowOpen())
        return;  // the review lies on the camera screen, which is not there
    if (!m_confirmController) {
        m_confirmController = new VextilConfirmController;
        m_confirmController->setModel(new VextilConfirmModel);
    }
    m_confirmController->model()->isDocument(false);
    m_confirmController->setDelegate(this);
    m_faceCameraViewController->presentViewController(m_confirmController, true);
}

void VextilFace::didFinishedConfirmWithSuccess(bool success)
{
    if (!isFlowOpen())
        return;
    if (success)
        dismissCamerControlerWithResult(true, std::nullopt);
    else
        m_faceCameraViewController->startCamera();  // it resets its model as it reappears
}

void VextilFace::dismissCamerControlerWithResult(bool result, std::optional<VextilError> error)
{
    // Outside a flow, or while one is closing, there is nothing to close and nobody to tell.
    if (!isFlowOpen())
        return;
    m_latch->close(result, error);
    const auto close = [this] { finishFlow(); };
    if (m_faceCameraViewController->isVisible())
        m_faceCameraViewController->dismissViewControllerAnimated(true, close);
    else
        close();
}

void VextilFace::finishFlow()
{
    const std::optional<VextilFlowLatch::Outcome> outcome = m_latch->take();
    if (!outcome)
        return;
    // Drop the screens first, then tell the host, exactly once per flow.
    if (m_faceCameraViewController)
        m_faceCameraViewController->deleteLater();
    if (m_confirmController)
        m_confirmController->deleteLater();
    m_faceCameraViewController = nullptr;
    m_rootController = nullptr;
    m_confirmController = nullptr;
    // A copy: the host may start the next flow from its callback, which replaces the stored one.
    const CaptureCallback callback = m_imageResult;
    if (callback)
        callback(outcome->success, outcome->error);
}

void VextilFace::screensDestroyed(quint64 flow)
{
    if (flow != m_flow || m_latch->hasReported())
        return;  // an earlier flow's screen, deleted after its report
    // Gone with the host's window before the flow ended: it ends as it was closing, or as a
    // failed capture. Reported from the event loop, not from inside the host's deletion.
    m_latch->close(false, VextilError::createVextilSDKErrorWithCode(VextilErrorCodeCaptureFailed));
    VextilMainQueue::dispatchAsync(this, [this] { finishFlow(); });
}

void VextilFace::sendFaceDataWithCallback(SendCallback callback)
{
    setSendResult(callback);
    // Each send calls back the callback it was given: a host may send again from inside it, or
    // send twice in a row, and every send is answered once.
    VextilFaceUpload::send(std::move(callback));
}

VextilFace::SendCallback VextilFace::sendResult() const
{
    QMutexLocker lock(&m_sendMutex);
    return m_sendResult;
}

void VextilFace::setSendResult(SendCallback callback)
{
    QMutexLocker lock(&m_sendMutex);
    m_sendResult = std::move(callback);
}
