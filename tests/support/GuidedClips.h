#pragma once

#include "ClipRun.h"

#include <QSizeF>
#include <QString>

// What a guided clip (VEXTIL_GUIDED_CLIPS) is about: the instruction its user must be shown
// within kGuidedWithinSeconds of their face appearing (after 2 s of an empty room), and the
// camera view it is filmed for.
struct GuidedClip {
    QString instruction;
    QSizeF view;
};

constexpr double kFaceAppearsSeconds = 2.0;
constexpr double kGuidedWithinSeconds = 1.5;

// The guided clip a path names; an empty instruction for any other clip.
GuidedClip guidedClip(const QString &path);
// The path of the guided clip of that name ("guided_closer_desktop"), from VEXTIL_GUIDED_CLIPS.
QString guidedClipPath(const QString &name);
