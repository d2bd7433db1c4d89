#pragma once

#include <VextilToolkit/VextilCaptureStats.h>
#include <VextilToolkit/VextilFaceCameraModel.h>
#include <VextilToolkit/VextilFaceCameraModelDelegate.h>
#include <VextilToolkit/VextilFrameSource.h>
#include <VextilToolkit/VextilToolkitExport.h>

#include "capture/VextilInstructionDelay.h"

#include <QImage>
#include <QObject>
#include <QPointer>
#include <QSizeF>

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>

class VextilCameraWatchdog;
class VextilCaptureQueue;

/// What a camera screen decides, whichever toolkit draws it (Widgets or Qt Quick): the camera's
/// lifecycle and permission, the frame path on the "capture_session_queue" thread, the tutorial
/// gate, hiding and showing, camera faults, and the end of the capture. It tells its screen what
/// to show through signals, always on the GUI thread and in the order the model asked.
/// Exported for the Qt Quick module; not part of the toolkit's API.
class VEXTIL_EXPORT VextilCaptureSession : public QObject, public VextilFaceCameraModelDelegate {
    Q_OBJECT
public:
    explicit VextilCaptureSession(QObject *parent = nullptr);
    /// Stops the camera and drains the capture queue.
    ~VextilCaptureSession() override;

    VextilFaceCameraModel *model() const { return m_model; }
    /// Replaces the model (the session owns it when it has no parent).
    void setModel(VextilFaceCameraModel *model);
    /// Replaces the camera (for instance by a video file).
    void setFrameSource(std::unique_ptr<VextilFrameSource> source);
    VextilFrameSource *frameSource() const { return m_source.get(); }
    /// Asked before each start: false while the screen is going away for good.
    void setStayingCheck(std::function<bool()> staying) { m_staying = std::move(staying); }

    /// The screen has loaded: a fresh model, the camera (the settings' camera unless one was
    /// given), the capture queue and the watchdog.
    void load();
    /// The screen is about to appear: the model starts over, and a moment later, if the screen
    /// is staying, the camera's permission is checked and the camera started once it is granted.
    void appear();
    /// The screen was shown or hidden, by anyone: the camera stops while it is hidden and goes on
    /// where it was when it is shown again during the capture.
    void setShown(bool shown);
    /// The tutorial covers the screen: frames are dropped unconverted while it does.
    void setTutorialShown(bool shown) { m_tutorialShown = shown; }
    bool isTutorialShown() const { return m_tutorialShown; }
    /// The camera view's size in the screen's units, and how many device pixels one unit has.
    void setViewSize(QSizeF size, qreal devicePixelRatio);

    /// Starts (or restarts) frame delivery.
    void startCamera();
    /// Checks camera permission, asking when nobody has been asked yet, and starts the camera
    /// once access is granted.
    void checkAuthorization();
    /// The user dismissed the permission alert: the capture failed.
    void cancelPermission() { finish(false); }
    /// Stops the camera, resets the model and emits finished, on the GUI thread.
    void finish(bool success);

    /// The instruction to show: a camera fault, or else the model's newest instruction.
    QString instruction() const;
    VextilCaptureStats captureStats() const;
    /// The screen painted its instruction line: closes the measure of a new instruction's delay.
    /// Any thread (a Qt Quick window reports from its render thread).
    void instructionPainted();
    /// Seconds from the first neutral image to completion, once known.
    std::optional<double> secondsToCompletion() const;

    // The model's calls, carried to the GUI thread.
    void finishedCapture() override { finish(true); }
    void updateMessageText(const QString &text) override;
    void updateProgressView(double progress) override;
    void isProgressBarHidden(bool hidden) override;
    void changeMaskState() override;
    void isPopupViewHidden(bool hidden) override;

Q_SIGNALS:
    void instructionChanged(const QString &text);
    void progressChanged(double progress);
    void progressBarHiddenChanged(bool hidden);
    /// The face frame turns green (a face is in it) or white again.
    void maskStateChanged(bool faceFound);
    void smilePromptChanged(bool shown);
    /// The newest frame for the preview, upright and cropped to the view.
    void frameReady(const QImage &frame);
    /// Camera access was refused: the screen asks the user to allow it in the settings.
    void permissionDenied();
    /// Access was granted after it had been refused (the user came back from the settings): the
    /// screen closes its alert; the camera is starting.
    void permissionGranted();
    void finished(bool success);

private:
    void denied();
    void releaseDetector();
    void applicationStateChanged(Qt::ApplicationState state);
    void captureOutput(const VextilCameraFrame &frame);
    void startSource();
    void stopSource();
    void showFrame(const QImage &frame);
    void onGuiThread(std::function<void()> work);
    bool isStaying() const { return !m_staying || m_staying(); }

    QPointer<VextilFaceCameraModel> m_model;
    std::unique_ptr<VextilFrameSource> m_source;
    std::unique_ptr<VextilCaptureQueue> m_captureQueue;
    VextilInstructionDelay m_instructionDelay;
    VextilCameraWatchdog *m_watchdog = nullptr;
    std::function<bool()> m_staying;
    QString m_modelText;  // the model's newest instruction, shown whenever the camera delivers
    bool m_shown = false;
    bool m_captureActive = false;  // between starting the camera and the end of the capture
    bool m_denied = false;         // access was refused, and the screen says so
    bool m_faceFound = false;
    std::atomic<int> m_analysedSide{720};  // longer side of the copy judged and shown, in pixels
    std::atomic<bool> m_tutorialShown{false};
    std::atomic<bool> m_scratchGivenBack{false};  // a frame was analysed since the screen appeared
    std::atomic<qint64> m_firstNeutralNs{0};
    std::atomic<qint64> m_completedNs{0};
    // The newest frame waiting for the preview, and whether a hop to show it is queued.
    std::mutex m_previewMutex;
    QImage m_previewFrame;
    bool m_previewQueued = false;
};
