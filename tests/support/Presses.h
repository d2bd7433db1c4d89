#pragma once

#include <QPointingDevice>
#include <QTest>
#include <QWidget>

// A finger on the screen where a control is drawn: the press goes to whatever widget is on top
// at that point of the control's window, as a user's does, not to the control itself. A control
// hidden under another, or drawn off its place, is then not pressed.
namespace presses {

// The widget on top at the middle of `control`, and that point in its own coordinates. A
// control still sliding in is waited for (up to 2 s) until its middle lies inside the window.
inline QWidget *topmostAt(QWidget *control, QPoint *local)
{
    QWidget *window = control->window();
    QPoint at;
    QWidget *target = nullptr;
    const bool found = QTest::qWaitFor([&] {
        at = control->mapTo(window, control->rect().center());
        target = window->childAt(at);
        return target != nullptr;
    }, 2000);
    if (!found)
        target = window;  // nothing of the window is drawn there
    *local = target->mapFrom(window, at);
    return target;
}

// The mouse's button goes down (and stays down) where the control is drawn.
inline void pressWhereDrawn(QWidget *control)
{
    QPoint local;
    QWidget *target = topmostAt(control, &local);
    QTest::mousePress(target, Qt::LeftButton, {}, local);
}

inline void releaseWhereDrawn(QWidget *control)
{
    QPoint local;
    QWidget *target = topmostAt(control, &local);
    QTest::mouseRelease(target, Qt::LeftButton, {}, local);
}

// A finger lands (and stays) where the control is drawn, on a touch screen.
inline void touchWhereDrawn(QWidget *control)
{
    static QPointingDevice *screen = QTest::createTouchDevice();
    QPoint local;
    QWidget *target = topmostAt(control, &local);
    QWidget *window = control->window();
    QTest::touchEvent(window, screen).press(0, target->mapTo(window, local), window);
}

}  // namespace presses
