#pragma once

#include <VextilToolkit/VextilBaseViewController.h>
#include <VextilToolkit/VextilCaptureStats.h>
#include <VextilToolkit/VextilFaceCameraControllerDelegate.h>
#include <VextilToolkit/VextilFaceCameraModel.h>
#include <VextilToolkit/VextilFaceCameraModelDelegate.h>
#include <VextilToolkit/VextilFrameSource.h>
#include <VextilToolkit/VextilToolkitExport.h>

#include <QMessageBox>
#include <QPointer>

#include <memory>
#include <optional>

class NavigationBarView;
class VextilCaptureSession;
class VextilFaceCameraView;
class VextilFaceProgressBoxView;

/// The camera screen: navigation bar, camera picture and progress box; opens the camera (or
/// its stand-in), checks permission, shows the tutorial, feeds every frame to the face capture
/// model on the "capture_session_queue" thread, shows what the model asks for, and reports the
/// end of the capture to its delegate. A camera that is missing, fails or stops delivering is
/// named on the screen in place of the instructions and reopened until it delivers again. GUI
/// thread, except the frame path and the model's calls.
class VEXTIL_WIDGETS_EXPORT VextilFaceCameraViewController : public VextilBaseViewController,
                                                     public VextilFaceCameraModelDelegate {
    Q_OBJECT
public:
    explicit VextilFaceCameraViewController(QWidget *parent = nullptr);
    /// Stops the camera and drains the capture queue.
    ~VextilFaceCameraViewController() override;

    /// Receives the end of the capture (held weakly); must implement VextilFaceCameraControllerDelegate.
    void setDelegate(QObject *delegate) { m_delegate = delegate; }
    QObject *delegate() const { return m_delegate; }
    /// The face capture model; the screen makes a fresh one when it loads.
    VextilFaceCameraModel *model() const;
    void setModel(VextilFaceCameraModel *model);
    /// Whether the tutorial opens with the screen (true by default).
    bool presentTutorial() const { return m_presentTutorial; }
    void setPresentTutorial(bool present) { m_presentTutorial = present; }
    /// Replaces the camera (for instance by a video file); before the screen loads.
    void setFrameSource(std::unique_ptr<VextilFrameSource> source);
    VextilFrameSource *frameSource() const;

    /// The screen's parts (their classes are internal).
    NavigationBarView *navigationView() const { return m_navigationView; }
    VextilFaceCameraView *faceCameraView() const { return m_faceCameraView; }
    VextilFaceProgressBoxView *faceProgressBoxView() const { return m_faceProgressBoxView; }
    bool isPresentingTutorial() const;
    /// The permission alert while it is open.
    QMessageBox *alert() const { return m_alert; }

    /// Starts (or restarts) frame delivery.
    void startCamera();
    /// Re-checks camera permission (a host wires it to coming back to the foreground).
    void willEnterForeground();
    /// Shows the tutorial over the screen (also the help button's action).
    void presentTutorialPopUp();
    /// The back button's action: the capture failed.
    void didCancel() { dismissController(false); }
    /// Stops the camera, resets the model and reports to the delegate, on the GUI thread.
    void dismissController(bool success);

    /// Frames delivered, analysed and dropped so far, with the time each analysis took.
    VextilCaptureStats captureStats() const;
    /// Seconds from the first neutral image to completion, once known.
    std::optional<double> secondsToCompletion() const;

    // The model's calls (it is told to make them to the screen's session). They may come on any
    // thread; each is carried once to the GUI thread and applied to the views there, in call order.
    void finishedCapture() override;
    void updateMessageText(const QString &text) override;
    void updateProgressView(double progress) override;
    void isProgressBarHidden(bool hidden) override;
    void changeMaskState() override;
    void isPopupViewHidden(bool hidden) override;

protected:
    void viewDidLoad() override;
    void viewWillAppear(bool animated) override;
    void viewDidAppear(bool animated) override;
    void resizeEvent(QResizeEvent *) override { setupConstraints(); }
    /// The camera stops whenever its screen is hidden, whoever hid it, and starts again when
    /// the screen is shown again during the capture.
    void hideEvent(QHideEvent *) override;
    void showEvent(QShowEvent *) override;

private:
    void focusStatus();
    void setupView();
    void setupConstraints();
    void setupColors();
    void connectSession();
    void cameraDenied();
    void showMaskState(bool faceFound);

    QPointer<QObject> m_delegate;
    bool m_presentTutorial = true;
    NavigationBarView *m_navigationView = nullptr;
    VextilFaceCameraView *m_faceCameraView = nullptr;
    VextilFaceProgressBoxView *m_faceProgressBoxView = nullptr;
    VextilCaptureSession *m_session = nullptr;  // what the screen decides, shared with the Qt Quick face
    QPointer<QMessageBox> m_alert;
};
