#include "capture/VextilFaceTrack.h"

#include <cmath>
#include <limits>

namespace {

// Beyond this many frames the history is cut short whatever its time span (a 120 fps camera).
constexpr size_t kMostFrames = 240;

// The eyes follow the head and stay put when the face smiles; without key points, the box.
QPointF anchorOf(const VextilFaceFeature &face)
{
    if (face.keyPoints.size() >= 2)
        return (face.keyPoints[0] + face.keyPoints[1]) / 2;
    return face.bounds.normalized().center();
}

double sizeOf(const VextilFaceFeature &face)
{
    if (face.keyPoints.size() >= 2) {
        const QPointF eyes = face.keyPoints[1] - face.keyPoints[0];
        return std::hypot(eyes.x(), eyes.y());
    }
    return face.bounds.normalized().width();
}

// The face as the eyes place it, in image pixels with the origin top left: a square 2.6 eye
// distances a side (forehead to chin), its centre a third of an eye distance below the eyes.
QRectF lookBoxOf(const VextilFaceFeature &face, const QRectF &box, int imageHeight)
{
    if (face.keyPoints.size() < 2)
        return box;
    const double eyes = sizeOf(face);
    const QPointF between = anchorOf(face);
    const QPointF centre(between.x(), imageHeight - between.y() + eyes / 3);
    return {centre - QPointF(1.3 * eyes, 1.3 * eyes), QSizeF(2.6 * eyes, 2.6 * eyes)};
}

double fitIntoView(QSizeF image, QSizeF view)
{
    return std::min(view.width() / image.width(), view.height() / image.height());
}

}  // namespace

double VextilFaceTrack::widthInView(const QRectF &bounds, QSizeF image, QSizeF view)
{
    if (image.isEmpty() || view.isEmpty())
        return std::numeric_limits<double>::quiet_NaN();
    return std::abs(bounds.width()) * fitIntoView(image, view) / view.width();
}

VextilFaceTrack::Step VextilFaceTrack::follow(const QImage &image, const std::optional<VextilFaceFeature> &face,
                                              QSizeF view, double seconds)
{
    m_sceneChange = m_scene.change(image);
    if (!face) {
        if (m_history.empty())
            return Step::NoFace;
        if (++m_missed < kMissedFrames)
            return Step::Missed;
        m_history.clear();
        return Step::Lost;
    }
    VextilTrackedFace next = measure(image, *face, view, seconds);
    if (m_history.empty())
        return begin(std::move(next));
    m_missed = 0;
    const Break broken = breakBetween(m_history.back(), next, image);
    if (broken == Break::None) {
        remember(std::move(next));
        return Step::Continued;
    }
    m_lastBreak = broken;
    begin(std::move(next));
    return Step::Broken;
}

void VextilFaceTrack::reset()
{
    m_history.clear();
    m_missed = 0;
    ++m_id;
}

double VextilFaceTrack::speed() const
{
    if (m_history.size() < 2)
        return 0;
    // Back from the newest frame while the one before it is still within the time.
    const double since = m_history.back().seconds - kSpeedSeconds;
    double moved = 0;
    auto frame = m_history.rbegin();
    for (auto older = std::next(frame); older != m_history.rend() && older->seconds >= since; ++frame, ++older)
        moved += frame->shift;
    const double elapsed = m_history.back().seconds - frame->seconds;
    return elapsed > 0 ? moved / elapsed : 0;
}

VextilTrackedFace VextilFaceTrack::measure(const QImage &image, const VextilFaceFeature &face, QSizeF view,
                                           double seconds) const
{
    VextilTrackedFace tracked;
    tracked.feature = face;
    const QRectF bounds = face.bounds.normalized();
    tracked.box = QRectF(bounds.x(), image.height() - bounds.bottom(), bounds.width(), bounds.height());
    tracked.seconds = seconds;
    tracked.widthInView = widthInView(bounds, image.size(), view);
    if (!image.isNull() && !view.isEmpty()) {
        const double fit = fitIntoView(image.size(), view);
        const QPointF fromMiddle = tracked.box.center() - QPointF(image.width() / 2.0, image.height() / 2.0);
        tracked.offsetInView = QPointF(fromMiddle.x() * fit / view.width(), fromMiddle.y() * fit / view.height());
    }
    tracked.lookBox = lookBoxOf(face, tracked.box, image.height());
    tracked.appearance = VextilFaceAppearance(image, tracked.lookBox);
    tracked.sceneChange = m_sceneChange;
    return tracked;
}

VextilFaceTrack::Break VextilFaceTrack::breakBetween(const VextilTrackedFace &last, VextilTrackedFace &next,
                                                     const QImage &image) const
{
    next.lookChange = VextilFaceAppearance(image, last.lookBox).changeFrom(last.appearance);
    const double elapsed = std::max(0.0, next.seconds - last.seconds);
    const QPointF moved = anchorOf(next.feature) - anchorOf(last.feature);
    const double width = std::max(1.0, last.box.width());
    next.shift = std::hypot(moved.x(), moved.y()) / width;
    next.resize = std::abs(std::log(std::max(1e-6, sizeOf(next.feature)) / std::max(1e-6, sizeOf(last.feature))));
    if (next.shift > kJitter + kFastestHead * elapsed)
        return Break::Jumped;
    if (next.resize > kResizeJitter + kFastestApproach * elapsed)
        return Break::Resized;
    // A frame of another size cannot be compared (the view was resized): no evidence either way.
    if (std::isfinite(next.sceneChange) && next.sceneChange > kSceneCut && next.shift <= kJitter)
        return Break::SceneCut;
    return Break::None;
}

VextilFaceTrack::Step VextilFaceTrack::begin(VextilTrackedFace face)
{
    m_history.clear();
    m_missed = 0;
    ++m_id;
    remember(std::move(face));
    return Step::Started;
}

void VextilFaceTrack::remember(VextilTrackedFace face)
{
    m_history.push_back(std::move(face));
    while (m_history.size() > kMostFrames || m_history.back().seconds - m_history.front().seconds > kHistorySeconds)
        m_history.pop_front();
}
