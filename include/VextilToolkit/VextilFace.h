#pragma once

#include <VextilToolkit/VextilConfirmController.h>
#include <VextilToolkit/VextilConfirmControllerDelegate.h>
#include <VextilToolkit/VextilError.h>
#include <VextilToolkit/VextilFaceCameraControllerDelegate.h>
#include <VextilToolkit/VextilFaceCameraViewController.h>
#include <VextilToolkit/VextilRepository.h>
#include <VextilToolkit/VextilToolkitExport.h>

#include <QMutex>
#include <QObject>
#include <QPointer>

#include <functional>
#include <memory>
#include <optional>

class VextilFlowLatch;

/// The host's entry point: takes a face capture through the camera and review screens, and
/// uploads it. A process-wide singleton; call it from the GUI thread.
class VEXTIL_WIDGETS_EXPORT VextilFace : public QObject,
                                 public VextilFaceCameraControllerDelegate,
                                 public VextilConfirmControllerDelegate {
    Q_OBJECT
public:
    /// Called once per flow, on the GUI thread, after both screens are gone: (true, nothing)
    /// when the user accepted the capture, (false, error 421) when it failed or was cancelled.
    using CaptureCallback = std::function<void(bool success, std::optional<VextilError> error)>;
    /// Called once per send with the service's answer or the error; on the upload's network
    /// thread (at once, on the caller's thread, in test mode and for 420 and 424).
    using SendCallback = VextilRepository::SendCallback;

    /// The facade, created on first use (thread-safely) and never destroyed.
    static VextilFace *sharedInstance();

    /// Whether the next capture opens with the tutorial (true by default).
    void presentTutorial(bool present) { m_presentTutorial = present; }
    bool isPresentingTutorial() const { return m_presentTutorial; }
    /// Starts a capture flow over the host's top-most screen (a modal dialog of the host's
    /// included). While a flow is open, a new request only replaces the callback: the one flow
    /// goes on, and the new callback gets its result. A flow whose screens go with the host's
    /// window reports (false, error 421). May be called from inside the capture callback.
    void requestFace(CaptureCallback callback);
    /// Uploads the stored capture; on success the stored face images are dropped. A send while
    /// another is in flight runs beside it; each calls back its own callback once. May be called
    /// from inside a send callback, on the thread that callback runs on.
    void sendFaceDataWithCallback(SendCallback callback);

    /// The widget the camera screen is presented from. When the host sets none, the active
    /// window is used, or else the first visible top-level widget; screens the toolkit (or
    /// the host) presented over it are walked to the top-most.
    QWidget *rootController() const { return m_rootController; }
    void setRootController(QWidget *root) { m_rootController = root; }
    VextilFaceCameraViewController *faceCameraViewController() const { return m_faceCameraViewController; }
    VextilConfirmController *confirmController() const { return m_confirmController; }
    CaptureCallback imageResult() const { return m_imageResult; }
    void setImageResult(CaptureCallback callback) { m_imageResult = std::move(callback); }
    /// The callback of the latest send; any thread, as sends may start inside send callbacks.
    SendCallback sendResult() const;
    void setSendResult(SendCallback callback);

    /// Replaces the camera of the next camera screen built (a video file, for instance); wins
    /// over VextilToolkitSettings::setFrameSourceFactory, which serves both faces.
    void setFrameSourceFactory(std::function<std::unique_ptr<VextilFrameSource>()> factory);

    // The flow's steps, also callable; outside a flow they do nothing.
    void presentCameraView();
    void presentConfirmView();
    void dismissCamerControlerWithResult(bool result, std::optional<VextilError> error);
    void didFinishedCaptureWithSuccess(bool success) override;
    void didFinishedConfirmWithSuccess(bool success) override;

private:
    VextilFace();
    static QWidget *defaultRoot();
    static QWidget *topMost(QWidget *root);
    bool isFlowOnShow() const;
    bool isFlowOpen() const;  // a flow has its camera screen and is not closing
    void finishFlow();
    void screensDestroyed(quint64 flow);

    bool m_presentTutorial = true;
    std::shared_ptr<VextilFlowLatch> m_latch;  // one flow at a time, one report each
    quint64 m_flow = 0;                      // counts flows, to tell the current one's screen from earlier ones
    CaptureCallback m_imageResult;
    mutable QMutex m_sendMutex;  // sends may start on an upload's thread, from a send callback
    SendCallback m_sendResult;
    QPointer<QWidget> m_rootController;
    QPointer<VextilFaceCameraViewController> m_faceCameraViewController;
    QPointer<VextilConfirmController> m_confirmController;
    std::function<std::unique_ptr<VextilFrameSource>()> m_frameSourceFactory;
};
