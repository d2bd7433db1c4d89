#pragma once

#include <VextilToolkit/VextilClock.h>
#include <VextilToolkit/VextilFaceCameraModelDelegate.h>
#include <VextilToolkit/VextilFaceCaptureState.h>
#include <VextilToolkit/VextilFaceDetector.h>
#include <VextilToolkit/VextilToolkitExport.h>

#include <QImage>
#include <QList>
#include <QMutex>
#include <QObject>
#include <QPointer>
#include <QSizeF>

#include <atomic>
#include <functional>
#include <memory>
#include <optional>

class VextilFaceTrack;
class VextilSmileJudge;

/// The face capture state machine. Fed one image per camera frame, it detects the face and its
/// smile, collects five neutral images at least a second apart and then two smiling ones,
/// drives the camera screen through its delegate, and hands the images to VextilRepository.
/// The smile is a liveness check, on one face followed frame by frame: a face that jumps, a
/// scene swapped around it, or a face lost for two frames starts the collection over, smiles
/// included. While neutral images are collected, no frame the detector calls smiling is taken:
/// a user who smiles too early is asked to relax ("Relax your face") and the capture waits.
/// Once the smile is asked for, it counts only when it has grown over several frames, and, for
/// a detector that grades it (VextilFaceFeature::smileScore), when it rises clearly above this
/// user's own neutral frames of this capture, so a still photo, or one swapped for another,
/// never completes. A face that is found but not ready is not used, and the user is told what
/// to do ("Move closer", "Move back", "Center your face", "Find more light", "Hold still").
/// The model puts its detector in stream mode.
///
/// Create it on the GUI thread. The state machine runs on one thread, the one that calls
/// processFace(): the reset is queued there too (see setStateQueue). Completion runs on the GUI
/// thread's event loop.
class VEXTIL_EXPORT VextilFaceCameraModel : public QObject {
    Q_OBJECT
public:
    /// Images shared by reference with the capture store; null is not the same as empty.
    using ImageArray = std::shared_ptr<QList<QImage>>;

    /// A model on the toolkit's default face detector and the steady clock.
    explicit VextilFaceCameraModel(QObject *parent = nullptr);
    /// A model on the given detector and clock (an empty clock means the steady clock).
    explicit VextilFaceCameraModel(std::shared_ptr<VextilFaceDetector> detector, VextilClock clock = {},
                                   QObject *parent = nullptr);
    ~VextilFaceCameraModel() override;

    /// Runs work, in call order, on the thread that calls processFace().
    using StateQueue = std::function<void(std::function<void()> work)>;

    /// Stores the on-screen size of the camera view; faces are judged against it. Any thread.
    void setViewSize(QSizeF size);
    /// Where the reset runs: the queue that feeds processFace() (the camera screen sets its
    /// capture queue). Unset, the GUI thread's event loop, for hosts that feed frames there.
    /// Set before frames flow.
    void setStateQueue(StateQueue queue);
    /// Whether the face's on-screen width is strictly between 40% and 83% of the view's width,
    /// with the image fitted into the view keeping its aspect (a ready face is also centred,
    /// lit well enough and held still).
    bool isFaceNearEnough(const VextilFaceFeature &face, const QImage &image) const;
    /// Analyses one frame and moves the state machine. Capture thread; a frame that arrives
    /// while another is being detected is dropped.
    void processFace(const QImage &image);
    /// The same for an image made small for analysis: the image kept for upload, when this
    /// frame is kept, is `keep()`, the whole-size picture of the same view.
    void processFace(const QImage &analysed, const std::function<QImage()> &keep);
    /// Enters a state and tells the delegate what to show. Thread of the caller.
    void setUItoState(VextilFaceCaptureState state);
    /// Queues a reset to the state machine's thread: both arrays new and empty, state 0.
    void resetState();
    /// Drops the face images held by the capture store.
    void clearData();
    /// The first instructions text, translated: "Looking for face".
    QString getFirstMessageText() const;

    /// Neutral images collected so far, oldest first.
    ImageArray facesArray() const;
    void setFacesArray(ImageArray array);
    /// Smiling images collected so far; null until the first reset has run.
    ImageArray facesSmileArray() const;
    void setFacesSmileArray(ImageArray array);
    /// Time of the last accepted frame; empty until the first one.
    std::optional<VextilTimePoint> lastFrameDate() const;
    void setLastFrameDate(std::optional<VextilTimePoint> date);
    /// The face detector, made once at construction.
    std::shared_ptr<VextilFaceDetector> faceDetector() const;
    /// The camera view's size; zero until setViewSize().
    QSizeF viewSize() const;
    /// True while a detection runs.
    bool isProcessing() const;
    void setIsProcessing(bool processing);
    /// One-frame grace flag: a single frame without a face is forgiven while it is set.
    bool hasFaceInLastFrame() const;
    void setHasFaceInLastFrame(bool hasFace);
    /// The state of the machine.
    VextilFaceCaptureState currentState() const;
    void setCurrentState(VextilFaceCaptureState state);
    /// Receiver of the screen updates, held weakly; must implement VextilFaceCameraModelDelegate.
    QObject *delegate() const;
    void setDelegate(QObject *delegate);

private:
    void judge(const QImage &image, const QList<VextilFaceFeature> &features, const std::function<QImage()> &keep);
    void facesFound(const QList<VextilFaceFeature> &faces);
    void takeBackCheckingAhead();
    void noFace(bool faceLost);
    void startOver();
    bool isReady(int hint);
    void showHint(int hint);
    void lookingForFace(const VextilFaceFeature &face, const std::function<QImage()> &keep);
    void collectingFaces(const VextilFaceFeature &face, const std::function<QImage()> &keep);
    void awaitingSmile(const VextilFaceFeature &face, const std::function<QImage()> &keep);
    // As setUItoState(), with the progress counting `imagesOnTheWay` neutral images not yet appended.
    void enterState(VextilFaceCaptureState state, int imagesOnTheWay);
    void appendNeutral(const QImage &image);
    bool secondHasPassed() const;
    void stampClock();
    double clockSeconds() const;
    int neutralCount() const;
    void completeCapture();
    void runOnStateQueue(std::function<void()> work);
    VextilFaceCameraModelDelegate *currentDelegate() const;

    // Guards the arrays, the view size, the state queue and the delegate pointer, which the
    // capture thread and the GUI thread share; never held while the detector or the delegate runs.
    mutable QMutex m_mutex;
    ImageArray m_facesArray;
    ImageArray m_facesSmileArray;
    QSizeF m_viewSize{0, 0};  // zero, not QSizeF()'s (-1, -1): no face passes until it is set
    QPointer<QObject> m_delegate;
    StateQueue m_stateQueue;

    std::shared_ptr<VextilFaceDetector> m_faceDetector;
    std::unique_ptr<VextilFaceTrack> m_track;         // guarded by m_mutex
    std::unique_ptr<VextilSmileJudge> m_smileJudge;  // guarded by m_mutex
    VextilClock m_clock;
    // Nanoseconds since the clock's epoch; kNoDate when no frame was accepted yet.
    std::atomic<qint64> m_lastFrameDate;
    std::atomic<bool> m_isProcessing{false};
    std::atomic<bool> m_hasFaceInLastFrame{false};
    // What the instruction line asks instead of the state's own text (a guidance hint), and the
    // hint the last frames called for, with how many frames in a row did.
    std::atomic<int> m_shownHint{0};
    std::atomic<int> m_wantedHint{0};
    std::atomic<int> m_wantedFrames{0};
    std::atomic<quint64> m_currentState{VextilFaceCaptureStateLookingForFace};
    // The frame being detected (capture thread only), and whether "Checking your face" went out
    // for it before its smile was judged (a reset on another thread clears it).
    const QImage *m_analysed = nullptr;
    std::atomic<bool> m_checkingAhead{false};
};
