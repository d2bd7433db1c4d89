#pragma once

#include <QStackedWidget>

/// A stack of screens for hosts that wrap toolkit screens in a navigation stack; like the
/// toolkit's screens it is portrait only and never rotates. GUI thread only.
class VextilBaseNavigationController : public QStackedWidget {
    Q_OBJECT
public:
    using QStackedWidget::QStackedWidget;

    /// Orientations the stack supports: portrait only.
    virtual Qt::ScreenOrientations supportedInterfaceOrientations() const { return Qt::PortraitOrientation; }
    /// Whether the stack follows the device's rotation: never.
    virtual bool shouldAutorotate() const { return false; }
    /// Shows a screen on top of the stack.
    void pushViewController(QWidget *controller);
    /// Removes the top screen (never the last one) and returns it; the caller owns it.
    QWidget *popViewController();
};
