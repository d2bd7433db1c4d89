#pragma once

#include <QString>

/// What the camera screen's status says to a screen reader, one sentence for the whole state:
/// the instruction, how many neutral photos are taken while they are being taken, and "SMILE!"
/// while the smile is awaited. Spoken as the focused status element's name changes, so it is
/// made once here for every screen face.
class VextilCaptureStatusText {
public:
    /// Neutral photos a capture takes.
    static constexpr int kNeutralPhotos = 5;

    /// The status for an instruction, the progress bar's fill (0 to 1) and whether it shows, and
    /// whether the smile is asked for.
    static QString compose(const QString &instruction, double progress, bool progressShown, bool smile);
};
