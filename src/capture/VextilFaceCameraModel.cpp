#include <VextilToolkit/VextilFaceCameraModel.h>

#include <VextilToolkit/VextilRepository.h>

#include "capture/VextilCaptureGuidance.h"
#include "capture/VextilFaceTrack.h"
#include "capture/VextilSmileJudge.h"
#include "core/VextilLocked.h"
#include "core/VextilMainQueue.h"
#include "core/VextilTexts.h"

#include <cmath>
#include <limits>

namespace {

constexpr qint64 kNoDate = std::numeric_limits<qint64>::min();
constexpr auto kPacing = std::chrono::seconds(1);
constexpr int kNeutralImages = 5;
constexpr int kSmileImages = 2;
// Frames in a row that must call for the same guidance before the instruction changes, so
// that a face on a limit does not make the line (and a screen reader) flicker.
constexpr int kSteadyHintFrames = 3;

using Hint = VextilCaptureGuidance::Hint;

}  // namespace

VextilFaceCameraModel::VextilFaceCameraModel(QObject *parent)
    : VextilFaceCameraModel(VextilFaceDetector::createDefault(), {}, parent)
{
}

VextilFaceCameraModel::VextilFaceCameraModel(std::shared_ptr<VextilFaceDetector> detector, VextilClock clock,
                                             QObject *parent)
    : QObject(parent), m_facesArray(std::make_shared<QList<QImage>>()), m_faceDetector(std::move(detector)),
      m_track(std::make_unique<VextilFaceTrack>()), m_smileJudge(std::make_unique<VextilSmileJudge>()),
      m_clock(clock ? std::move(clock) : VextilClock(&std::chrono::steady_clock::now)), m_lastFrameDate(kNoDate)
{
    // The smiling array is made by the first reset only: the camera screen always resets the
    // model before frames flow, and until then a capture cannot complete.
    // Frames come from one camera: the detector may reuse work across them.
    if (m_faceDetector) {
        m_faceDetector->setStreamMode(true);
        m_faceDetector->setFacesFoundHandler([this](const QList<VextilFaceFeature> &faces) { facesFound(faces); });
    }
}

VextilFaceCameraModel::~VextilFaceCameraModel() = default;

void VextilFaceCameraModel::setViewSize(QSizeF size) { writeLocked(m_mutex, m_viewSize, size); }

void VextilFaceCameraModel::setStateQueue(StateQueue queue) { writeLocked(m_mutex, m_stateQueue, std::move(queue)); }

bool VextilFaceCameraModel::isFaceNearEnough(const VextilFaceFeature &face, const QImage &image) const
{
    const double ratio =
        VextilFaceTrack::widthInView(face.bounds, image.isNull() ? QSizeF() : QSizeF(image.size()), viewSize());
    // Comparisons with NaN are false, so an unset view or a missing image never passes.
    return VextilCaptureGuidance::kFarthest < ratio && ratio < VextilCaptureGuidance::kNearest;
}

void VextilFaceCameraModel::processFace(const QImage &image)
{
    processFace(image, [&image] { return image; });
}

void VextilFaceCameraModel::processFace(const QImage &image, const std::function<QImage()> &keep)
{
    bool idle = false;
    if (!m_isProcessing.compare_exchange_strong(idle, true))
        return;
    m_analysed = &image;
    const QList<VextilFaceFeature> features =
        m_faceDetector ? m_faceDetector->detect(image) : QList<VextilFaceFeature>();
    m_analysed = nullptr;
    // The guard covers detection only, not the state logic that follows.
    m_isProcessing = false;
    judge(image, features, keep);
    if (m_checkingAhead.exchange(false))
        takeBackCheckingAhead();
}

void VextilFaceCameraModel::facesFound(const QList<VextilFaceFeature> &faces)
{
    // A face is found and its smile not yet judged, which takes as long again. When the face is
    // ready to be kept, the user hears at once that it is being checked; the smile decides next.
    if (faces.isEmpty() || !m_analysed || currentState() != VextilFaceCaptureStateLookingForFace
        || m_shownHint == int(Hint::RelaxFace))
        return;
    VextilFaceTrack::Step step;
    Hint hint;
    {
        QMutexLocker lock(&m_mutex);
        VextilFaceTrack trial = *m_track;  // what this frame will do to the track, tried on a copy
        step = trial.follow(*m_analysed, faces.first(), m_viewSize, clockSeconds());
        hint = VextilCaptureGuidance::of(trial);
    }
    if (hint != Hint::None || (step != VextilFaceTrack::Step::Started && step != VextilFaceTrack::Step::Continued))
        return;
    if (VextilFaceCameraModelDelegate *delegate = currentDelegate()) {
        delegate->updateMessageText(VextilTexts::tr("Checking your face"));
        m_checkingAhead = true;
    }
}

void VextilFaceCameraModel::takeBackCheckingAhead()
{
    // Announced ahead and nothing said since: what was shown before comes back.
    const int shown = m_shownHint;
    VextilFaceCameraModelDelegate *delegate = currentDelegate();
    if (!delegate || currentState() != VextilFaceCaptureStateLookingForFace)
        return;
    delegate->updateMessageText(shown == int(Hint::None) ? VextilTexts::tr("Looking for face")
                                                         : VextilCaptureGuidance::text(Hint(shown)));
}

void VextilFaceCameraModel::judge(const QImage &image, const QList<VextilFaceFeature> &features,
                                  const std::function<QImage()> &keep)
{
    const std::optional<VextilFaceFeature> first =
        features.isEmpty() ? std::nullopt : std::optional<VextilFaceFeature>(features.first());
    VextilFaceTrack::Step step;
    Hint hint;
    {
        QMutexLocker lock(&m_mutex);
        step = m_track->follow(image, first, m_viewSize, clockSeconds());
        hint = VextilCaptureGuidance::of(*m_track);
    }
    if (!first) {
        noFace(step == VextilFaceTrack::Step::Lost);
        return;
    }
    if (step == VextilFaceTrack::Step::Broken)
        startOver();  // another face, or a photo put in the face's place
    if (!isReady(int(hint)))
        return;
    VextilFaceFeature face = *first;
    const VextilFaceCaptureState state = currentState();
    {
        QMutexLocker lock(&m_mutex);
        face.hasSmile = m_smileJudge->isSmiling(*m_track, state != VextilFaceCaptureStateAwaitingSmile);
    }
    switch (state) {
    case VextilFaceCaptureStateLookingForFace: lookingForFace(face, keep); break;
    case VextilFaceCaptureStateCollectingFaces: collectingFaces(face, keep); break;
    case VextilFaceCaptureStateAwaitingSmile: awaitingSmile(face, keep); break;
    }
}

void VextilFaceCameraModel::noFace(bool faceLost)
{
    // One face-less frame is forgiven; the second in a row loses the face and starts over.
    if (!m_hasFaceInLastFrame || faceLost)
        startOver();
    m_hasFaceInLastFrame = false;
}

void VextilFaceCameraModel::startOver()
{
    // Every image comes from one face followed throughout: the smiles go with the neutral
    // images. New arrays rather than emptied ones: a capture already handed to the store stays whole.
    {
        QMutexLocker lock(&m_mutex);
        m_facesArray = std::make_shared<QList<QImage>>();
        if (m_facesSmileArray)
            m_facesSmileArray = std::make_shared<QList<QImage>>();
    }
    setUItoState(VextilFaceCaptureStateLookingForFace);
}

bool VextilFaceCameraModel::isReady(int hint)
{
    m_wantedFrames = m_wantedHint.exchange(hint) == hint ? m_wantedFrames + 1 : 1;
    if (m_wantedFrames >= kSteadyHintFrames && hint != int(Hint::Unmeasured)
        && !(hint == int(Hint::None) && m_shownHint == int(Hint::RelaxFace)))
        showHint(hint);
    return hint == int(Hint::None);
}

void VextilFaceCameraModel::showHint(int hint)
{
    // Once until it changes, so that a screen reader hears it once.
    if (m_shownHint.exchange(hint) == hint)
        return;
    VextilFaceCameraModelDelegate *delegate = currentDelegate();
    if (!delegate)
        return;
    m_checkingAhead = false;
    const VextilFaceCaptureState state = currentState();
    if (hint != int(Hint::None))
        delegate->updateMessageText(VextilCaptureGuidance::text(Hint(hint)));
    else
        delegate->updateMessageText(state == VextilFaceCaptureStateLookingForFace
                                        ? VextilTexts::tr("Looking for face")
                                        : VextilTexts::tr("Checking your face"));
    // The smile is asked for only of a face that is ready.
    if (state == VextilFaceCaptureStateAwaitingSmile)
        delegate->isPopupViewHidden(hint != int(Hint::None));
}

void VextilFaceCameraModel::lookingForFace(const VextilFaceFeature &face, const std::function<QImage()> &keep)
{
    if (face.hasSmile) {
        showHint(int(Hint::RelaxFace));  // a smile now would make neutral images of a smile: the capture waits
    } else {
        m_hasFaceInLastFrame = true;
        // The screen hears first: making the whole picture takes milliseconds it need not wait for.
        enterState(VextilFaceCaptureStateCollectingFaces, 1);
        appendNeutral(keep());
    }
    stampClock();
}

void VextilFaceCameraModel::collectingFaces(const VextilFaceFeature &face, const std::function<QImage()> &keep)
{
    if (face.hasSmile) {
        // The first smiling frame only clears the flag; a second before a new neutral image
        // drops the newest neutral image and starts looking again.
        if (!m_hasFaceInLastFrame) {
            {
                QMutexLocker lock(&m_mutex);
                if (m_facesArray && !m_facesArray->isEmpty())
                    m_facesArray->removeLast();
            }
            setUItoState(VextilFaceCaptureStateLookingForFace);
        }
        m_hasFaceInLastFrame = false;
        return;
    }
    if (!secondHasPassed())
        return;
    stampClock();
    m_hasFaceInLastFrame = true;
    const bool last = neutralCount() + 1 >= kNeutralImages;
    enterState(last ? VextilFaceCaptureStateAwaitingSmile : VextilFaceCaptureStateCollectingFaces, 1);
    appendNeutral(keep());
}

void VextilFaceCameraModel::appendNeutral(const QImage &image)
{
    // Made outside the lock: a whole picture takes a while.
    QMutexLocker lock(&m_mutex);
    if (m_facesArray)
        m_facesArray->append(image);
}

void VextilFaceCameraModel::awaitingSmile(const VextilFaceFeature &face, const std::function<QImage()> &keep)
{
    if (!face.hasSmile || !secondHasPassed())
        return;
    stampClock();
    const QImage kept = keep();
    qsizetype count = 0;
    {
        QMutexLocker lock(&m_mutex);
        if (!m_facesSmileArray)
            return;
        m_facesSmileArray->append(kept);
        count = m_facesSmileArray->size();
    }
    // Exactly two: a third smile collected before the screen closes never completes again.
    if (count == kSmileImages)
        VextilMainQueue::dispatchAsync(this, [this] { completeCapture(); });
}

void VextilFaceCameraModel::completeCapture()
{
    ImageArray faces, smiles;
    {
        QMutexLocker lock(&m_mutex);
        faces = m_facesArray;
        smiles = m_facesSmileArray;
    }
    VextilRepository *store = VextilRepository::sharedInstance();
    store->setFaceImages(faces);
    store->setFaceSmileImages(smiles);
    if (VextilFaceCameraModelDelegate *delegate = currentDelegate())
        delegate->finishedCapture();
}

bool VextilFaceCameraModel::secondHasPassed() const
{
    // Like a date that was never set, a missing clock reading counts as no time passed.
    const qint64 last = m_lastFrameDate;
    if (last == kNoDate)
        return false;
    const qint64 now = m_clock().time_since_epoch().count();
    const auto elapsed = std::chrono::steady_clock::duration(now > last ? now - last : last - now);
    return elapsed >= kPacing;
}

void VextilFaceCameraModel::stampClock() { m_lastFrameDate = m_clock().time_since_epoch().count(); }

double VextilFaceCameraModel::clockSeconds() const
{
    return std::chrono::duration<double>(m_clock().time_since_epoch()).count();
}

int VextilFaceCameraModel::neutralCount() const
{
    QMutexLocker lock(&m_mutex);
    return m_facesArray ? int(m_facesArray->size()) : 0;
}

void VextilFaceCameraModel::setUItoState(VextilFaceCaptureState state) { enterState(state, 0); }

void VextilFaceCameraModel::enterState(VextilFaceCaptureState state, int imagesOnTheWay)
{
    m_checkingAhead = false;  // the line is told anew
    m_shownHint = int(Hint::None);
    m_wantedHint = int(Hint::None);
    m_wantedFrames = 0;
    VextilFaceCameraModelDelegate *delegate = currentDelegate();
    // Entering state 2 keeps the mask green from state 1; every other real change toggles it.
    if (state != VextilFaceCaptureStateAwaitingSmile && state != currentState() && delegate)
        delegate->changeMaskState();
    m_currentState = state;
    if (!delegate)
        return;

    switch (currentState()) {
    case VextilFaceCaptureStateAwaitingSmile:
        delegate->updateMessageText(VextilTexts::tr("Checking your face"));
        delegate->isPopupViewHidden(false);
        delegate->isProgressBarHidden(true);
        break;
    case VextilFaceCaptureStateCollectingFaces:
    case VextilFaceCaptureStateLookingForFace:
        delegate->updateMessageText(currentState() == VextilFaceCaptureStateCollectingFaces
                                        ? VextilTexts::tr("Checking your face")
                                        : VextilTexts::tr("Looking for face"));
        delegate->isPopupViewHidden(true);
        delegate->isProgressBarHidden(false);
        delegate->updateProgressView((neutralCount() + imagesOnTheWay) / double(kNeutralImages));
        break;
    }
}

void VextilFaceCameraModel::resetState()
{
    // The reset runs where the frames are analysed, so that it never interleaves with one.
    runOnStateQueue([this] {
        {
            QMutexLocker lock(&m_mutex);
            m_facesArray = std::make_shared<QList<QImage>>();
            m_facesSmileArray = std::make_shared<QList<QImage>>();
            m_track->reset();  // the smile judge forgets with it
        }
        setUItoState(VextilFaceCaptureStateLookingForFace);
    });
}

void VextilFaceCameraModel::runOnStateQueue(std::function<void()> work)
{
    if (const StateQueue queue = readLocked(m_mutex, m_stateQueue))
        queue(std::move(work));
    else
        VextilMainQueue::dispatchAsync(this, std::move(work));
}

void VextilFaceCameraModel::clearData() { VextilRepository::sharedInstance()->resetFaceImages(); }

QString VextilFaceCameraModel::getFirstMessageText() const { return VextilTexts::tr("Looking for face"); }

VextilFaceCameraModel::ImageArray VextilFaceCameraModel::facesArray() const
{
    return readLocked(m_mutex, m_facesArray);
}
void VextilFaceCameraModel::setFacesArray(ImageArray array) { writeLocked(m_mutex, m_facesArray, std::move(array)); }

VextilFaceCameraModel::ImageArray VextilFaceCameraModel::facesSmileArray() const
{
    return readLocked(m_mutex, m_facesSmileArray);
}

void VextilFaceCameraModel::setFacesSmileArray(ImageArray array)
{
    writeLocked(m_mutex, m_facesSmileArray, std::move(array));
}

std::optional<VextilTimePoint> VextilFaceCameraModel::lastFrameDate() const
{
    const qint64 last = m_lastFrameDate;
    if (last == kNoDate)
        return std::nullopt;
    return VextilTimePoint(VextilTimePoint::duration(last));
}

void VextilFaceCameraModel::setLastFrameDate(std::optional<VextilTimePoint> date)
{
    m_lastFrameDate = date ? date->time_since_epoch().count() : kNoDate;
}

std::shared_ptr<VextilFaceDetector> VextilFaceCameraModel::faceDetector() const { return m_faceDetector; }

QSizeF VextilFaceCameraModel::viewSize() const { return readLocked(m_mutex, m_viewSize); }

bool VextilFaceCameraModel::isProcessing() const { return m_isProcessing; }
void VextilFaceCameraModel::setIsProcessing(bool processing) { m_isProcessing = processing; }
bool VextilFaceCameraModel::hasFaceInLastFrame() const { return m_hasFaceInLastFrame; }
void VextilFaceCameraModel::setHasFaceInLastFrame(bool hasFace) { m_hasFaceInLastFrame = hasFace; }

VextilFaceCaptureState VextilFaceCameraModel::currentState() const
{
    return VextilFaceCaptureState(m_currentState.load());
}

void VextilFaceCameraModel::setCurrentState(VextilFaceCaptureState state) { m_currentState = state; }

QObject *VextilFaceCameraModel::delegate() const { return readLocked(m_mutex, m_delegate).data(); }
void VextilFaceCameraModel::setDelegate(QObject *delegate) { writeLocked(m_mutex, m_delegate, delegate); }

VextilFaceCameraModelDelegate *VextilFaceCameraModel::currentDelegate() const
{
    // The delegate is asked at call time whether it implements the interface.
    return dynamic_cast<VextilFaceCameraModelDelegate *>(delegate());
}
