#pragma once

#include <QAccessible>

class QObject;
class QWidget;

/// What assistive technology is told about the toolkit's own widgets, which Qt cannot know:
/// images are graphics, the progress bar is a progress bar whose fill is its description. Installed once, by the
/// first toolkit widget that needs it; GUI thread.
class VextilAccessibility {
public:
    static void install();
    /// Gives a plain widget a role of its own (a picture drawn by hand is a graphic, say).
    static void setRole(QWidget *widget, QAccessible::Role role);
    /// Leaves a picture that only repeats the caption beside it out of what assistive technology
    /// walks (its parent must be set already).
    static void setDecorative(QWidget *widget);
    /// Sets a widget's description (the progress bar's fill, as a percentage), announcing it only
    /// when it changes. A value interface is not used: Qt's AT-SPI bridge would give it
    /// increase and decrease actions that do nothing.
    static void setDescription(QWidget *widget, const QString &description);
};
