#pragma once

#include <QAccessible>

class QObject;
class QWidget;

/// What assistive technology is told about the toolkit's own widgets, which Qt cannot know:
/// images are graphics, the progress bar is a progress bar with a value. Installed once, by the
/// first toolkit widget that needs it; GUI thread.
class VextilAccessibility {
public:
    static void install();
    /// Gives a plain widget a role of its own (a picture drawn by hand is a graphic, say).
    static void setRole(QWidget *widget, QAccessible::Role role);
    /// Announces a change of a widget's value (the progress bar's fill).
    static void announceValue(QObject *object, double value);
    /// Announces something that appeared and asks for attention (the "SMILE!" popup).
    static void announceAlert(QObject *object);
};
