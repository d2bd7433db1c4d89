#pragma once

#include <VextilToolkit/VextilFaceFeature.h>

#include "capture/VextilTrackedFace.h"
#include "detection/VextilSceneContinuity.h"

#include <QImage>
#include <QSizeF>

#include <deque>
#include <optional>

/// The face the capture follows, frame by frame: one owner (the face capture model) feeds it
/// every analysed frame; the model, the smile judge and the guidance read it. A track is one
/// face seen continuously: it ends when the face is missing for kMissedFrames frames in a row,
/// and breaks (a new track starts) when the face moves or changes size more than a live head
/// does between two frames, or when the scene around a face that holds still changes at once,
/// as when one photo is put in another's place. The limits and why they are what they are:
/// README, "Face and smile detection". Not thread-safe.
class VextilFaceTrack {
public:
    /// What a frame did to the track.
    enum class Step {
        NoFace,     ///< no face, and none was followed
        Started,    ///< a face after none: a new track
        Continued,  ///< the same face
        Missed,     ///< no face in this frame; the track waits for the next
        Lost,       ///< no face for kMissedFrames frames: the track ended
        Broken,     ///< a face that does not continue the last one: a new track starts with it
    };
    /// Why the last break happened.
    enum class Break {
        None,
        Jumped,
        Resized,
        SceneCut
    };

    /// How far a face may move between two frames however close they are, in face widths: the
    /// detector's own unsteadiness, and a smile changing the box.
    static constexpr double kJitter = 0.06;
    /// How fast a live head moves at most, in face widths a second (quick head and hand
    /// movements stay under 1.5).
    static constexpr double kFastestHead = 2.5;
    /// The same two limits for the face's size, as logs of the size ratio.
    static constexpr double kResizeJitter = 0.06;
    static constexpr double kFastestApproach = 2.5;
    /// Mean grey change (0 to 255) of the whole frame, around a face that moved at most
    /// kJitter, above which the scene was swapped; a moving camera or head is not counted.
    static constexpr double kSceneCut = 30;
    /// Frames in a row without a face that end a track.
    static constexpr int kMissedFrames = 2;
    /// How long the track remembers its frames.
    static constexpr double kHistorySeconds = 2.0;
    /// How long the face's speed is averaged over.
    static constexpr double kSpeedSeconds = 0.4;

    /// Follows one analysed frame: the detector's first face, or none, in `image`, judged
    /// against a camera view of `view` size, at `seconds` on the capture's clock.
    Step follow(const QImage &image, const std::optional<VextilFaceFeature> &face, QSizeF view, double seconds);
    /// Forgets the face: the next one starts a new track.
    void reset();

    /// Whether a face is being followed (it may be missing from the last frame).
    bool isFollowing() const { return !m_history.empty(); }
    /// Changes whenever a new track starts, so that what was learnt of one face is not carried
    /// over to the next.
    quint64 id() const { return m_id; }
    /// The newest frame with the face; only while following.
    const VextilTrackedFace &current() const { return m_history.back(); }
    /// This track's frames with the face, oldest first, over the last kHistorySeconds.
    const std::deque<VextilTrackedFace> &history() const { return m_history; }
    /// The face's mean speed over the last kSpeedSeconds, in face widths a second.
    double speed() const;
    /// Why the last break happened (None until one has).
    Break lastBreak() const { return m_lastBreak; }

    /// The on-screen width of a face of `bounds` in an image of `image` size, fitted into a view
    /// of `view` size keeping its aspect, as a share of the view's width; not a number when
    /// either size is empty.
    static double widthInView(const QRectF &bounds, QSizeF image, QSizeF view);

private:
    VextilTrackedFace measure(const QImage &image, const VextilFaceFeature &face, QSizeF view, double seconds) const;
    Break breakBetween(const VextilTrackedFace &last, VextilTrackedFace &next, const QImage &image) const;
    Step begin(VextilTrackedFace face);
    void remember(VextilTrackedFace face);

    std::deque<VextilTrackedFace> m_history;
    VextilSceneContinuity m_scene;
    double m_sceneChange = 0;
    int m_missed = 0;
    quint64 m_id = 0;
    Break m_lastBreak = Break::None;
};
