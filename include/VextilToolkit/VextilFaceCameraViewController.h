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

#include <atomic>
#include <chrono>
#include <memory>
#include <mutex>
#include <optional>

class NavigationBarView;
class VextilCameraWatchdog;
class VextilCaptureQueue;
class VextilFaceCameraView;
class VextilFaceProgressBoxView;

/// The camera screen: navigation bar, camera picture and progress box; opens the camera (or
/// its stand-in), checks permission, shows the tutorial, feeds every frame to the face capture
/// model on the "capture_session_queue" thread, shows what the model asks for, and reports the
/// end of the capture to its delegate. A camera that is missing, fails or stops delivering is
/// named on the screen in place of the instructions and reopened until it delivers again. GUI
/// thread, except the frame path and the model's calls.
class VEXTIL_EXPORT VextilFaceCameraViewController : public VextilBaseViewController,
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
    VextilFaceCameraModel *model() const { return m_model; }
    void setModel(VextilFaceCameraModel *model);
    /// Whether the tutorial opens with the screen (true by default).
    bool presentTutorial() const { return m_presentTutorial; }
    void setPresentTutorial(bool present) { m_presentTutorial = present; }
    /// Replaces the camera (for instance by a video file); before the screen loads.
    void setFrameSource(std::unique_ptr<VextilFrameSource> source);
    VextilFrameSource *frameSource() const { return m_source.get(); }

    /// The screen's parts (their classes are internal).
    NavigationBarView *navigationView() const { return m_navigationView; }
    VextilFaceCameraView *faceCameraView() const { return m_faceCameraView; }
    VextilFaceProgressBoxView *faceProgressBoxView() const { return m_faceProgressBoxView; }
    bool isPresentingTutorial() const { return m_isPresentingTutorial; }
    /// The permission alert while it is open.
    QMessageBox *alert() const { return m_alert; }

    /// Starts (or restarts) frame delivery.
    void startCamera();
    /// Re-checks camera permission (a host wires it to coming back to the foreground).
    void willEnterForeground() { checkAuthorization(); }
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

    // The model's calls. They come on the capture thread while frames are analysed; each is
    // carried once to the GUI thread and applied to the views there, in call order.
    void finishedCapture() override { dismissController(true); }
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
    void setupCamera();
    void setupColors();
    void checkAuthorization();
    void cameraDenied();
    void captureOutput(const VextilCameraFrame &frame);
    void startSource();
    void stopSource();
    void showInstructions();
    void showFrame(const QImage &frame);
    void onGuiThread(std::function<void()> work);

    QPointer<QObject> m_delegate;
    QPointer<VextilFaceCameraModel> m_model;
    bool m_presentTutorial = true;
    NavigationBarView *m_navigationView = nullptr;
    VextilFaceCameraView *m_faceCameraView = nullptr;
    VextilFaceProgressBoxView *m_faceProgressBoxView = nullptr;
    std::unique_ptr<VextilFrameSource> m_source;
    std::unique_ptr<VextilCaptureQueue> m_captureQueue;
    VextilCameraWatchdog *m_watchdog = nullptr;
    QString m_modelText;                   // the model's newest instruction, shown whenever the camera delivers
    std::atomic<int> m_analysedSide{720};  // longer side of the copy judged and shown, in pixels
    std::atomic<bool> m_isPresentingTutorial{false};
    bool m_captureActive = false;  // between starting the camera and the end of the capture
    QPointer<QMessageBox> m_alert;
    std::atomic<qint64> m_firstNeutralNs{0};
    std::atomic<qint64> m_completedNs{0};
    // The newest camera frame waiting for the preview, and whether a hop to show it is queued.
    std::mutex m_previewMutex;
    QImage m_previewFrame;
    bool m_previewQueued = false;
};
