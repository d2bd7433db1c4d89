#pragma once

#include <VextilToolkit/VextilFaceDetector.h>

#include <QList>
#include <QSizeF>
#include <QString>
#include <QStringList>

#include <memory>
#include <utility>

// The camera view of a phone held upright (390x844 points) and of a 1280x800 desktop window:
// what the camera screen crops each frame to, and judges faces against.
inline const QSizeF kPhoneView(390, 618);
inline const QSizeF kDesktopView(520, 578);

// What the face capture model did over a clip fed frame by frame in simulated time.
struct ClipRunResult {
    bool opened = false;               // the clip could be read
    bool completed = false;            // the model reported finishedCapture
    int frames = 0;                    // frames fed
    double firstNeutralSeconds = -1;   // clip time of the first collected neutral image
    double completionSeconds = -1;     // clip time of the frame that completed the capture
    int fallbacks = 0;                 // returns to looking for a face after collection began
    int storedNeutral = 0;             // images the store holds afterwards
    int storedSmiling = 0;
    QList<double> neutralTakenSeconds;  // clip time of every neutral image taken, dropped ones too
    QList<std::pair<double, QString>> instructions;  // clip time of every instruction shown, and its text

    // Clip time at which `text` was first shown at or after `from`, or -1.
    double firstShown(const QString &text, double from = 0) const;
};

// Feeds the clip to a fresh model on the given detector, with the clock at each frame's
// presentation time. With a view size, each frame is cropped to a camera view of that size and
// scaled as the camera screen does; without, the whole frame is the view. Needs a
// QCoreApplication; stops at completion.
ClipRunResult runClip(const QString &path, std::shared_ptr<VextilFaceDetector> detector, QSizeF view = {});

// The paths of a comma-separated clip list, as the build passes them.
inline QStringList clipList(const char *paths) { return QString::fromUtf8(paths).split(QLatin1Char(','), Qt::SkipEmptyParts); }

// The clips of users who smile before being asked: the smile shows from the face's first
// appearance (after 2 s of an empty room) for this long.
constexpr double kEarlySmileEndSeconds = 5.0;
