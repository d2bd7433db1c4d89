#include <VextilToolkit/VextilFace.h>

#include "core/VextilMainQueue.h"

#include <QApplication>
#include <QThread>

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

void VextilFace::presentCameraView()
{
    if (m_faceCameraViewController) {
        // A flow is still open: its data goes and its screen is shown again.
        if (m_faceCameraViewController->model())
            m_faceCameraViewController->model()->clearData();
    } else {
        m_faceCameraViewController = new VextilFaceCameraViewController;
        m_faceCameraViewController->setModel(new VextilFaceCameraModel);
        if (m_frameSourceFactory)
            m_faceCameraViewController->setFrameSource(m_frameSourceFactory());
    }
    while (VextilBaseViewController *presented = VextilBaseViewController::presentedViewControllerOf(m_rootController))
        m_rootController = presented;
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
    if (success)
        presentConfirmView();
    else
        dismissCamerControlerWithResult(false, VextilError::createVextilSDKErrorWithCode(VextilErrorCodeCaptureFailed));
}

void VextilFace::presentConfirmView()
{
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
    if (success)
        dismissCamerControlerWithResult(true, std::nullopt);
    else
        m_faceCameraViewController->startCamera();  // it resets its model as it reappears
}

void VextilFace::dismissCamerControlerWithResult(bool result, std::optional<VextilError> error)
{
    const auto close = [this, result, error] {
        // Drop the screens first, then tell the host, exactly once per flow.
        if (m_faceCameraViewController)
            m_faceCameraViewController->deleteLater();
        if (m_confirmController)
            m_confirmController->deleteLater();
        m_faceCameraViewController = nullptr;
        m_rootController = nullptr;
        m_confirmController = nullptr;
        if (m_imageResult)
            m_imageResult(result, error);
    };
    if (m_faceCameraViewController && m_faceCameraViewController->isVisible())
        m_faceCameraViewController->dismissViewControllerAnimated(true, close);
    else
        close();
}

void VextilFace::sendFaceDataWithCallback(SendCallback callback)
{
    m_sendResult = std::move(callback);
    VextilRepository::sharedInstance()->sendDataWithDataType(
        VextilDataTypeFace, [sendResult = m_sendResult](std::optional<QVariantMap> answer, std::optional<VextilError> error) {
            // Images stay for a retry unless the upload succeeded.
            if (!error)
                VextilRepository::sharedInstance()->resetFaceImages();
            if (sendResult)
                sendResult(std::move(answer), std::move(error));
        });
}
