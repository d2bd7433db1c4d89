#pragma once

#include <QObject>
#include <QPointer>
#include <QWidgetList>

class VextilBaseViewController;

/// Keeps the keyboard inside the toolkit's top-most screen while screens are up. Tab and
/// Shift+Tab cycle through that screen's own controls, or through those of an overlay on it that
/// is marked as a scope (the tutorial); focus that lands anywhere else in the window (a covered
/// screen, the host's own widgets) is brought back. When the last screen goes, the focus returns
/// to the widget that had it before the first came. Screens report themselves; GUI thread only.
class VextilFocusTrap : public QObject {
    Q_OBJECT
public:
    /// A screen has appeared (on top of the others) or gone.
    static void screenShown(VextilBaseViewController *screen);
    static void screenHidden(VextilBaseViewController *screen);
    /// Marks (or unmarks) an overlay that, while visible, holds the keyboard instead of its screen.
    static void setScope(QWidget *overlay, bool scope = true);
    /// Gives the focus back to the host's widget that had it before the first screen came.
    static void returnFocus();
    /// Where the keyboard is kept in `window`: its top-most screen or that screen's top-most
    /// scope overlay; null when no screen shows there.
    static QWidget *activeScope(const QWidget *window);
    /// The controls Tab visits in `scope`, in the window's focus order.
    static QWidgetList tabOrder(QWidget *scope);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    static VextilFocusTrap &instance();
    bool moveFocus(bool forward);

    QList<QPointer<VextilBaseViewController>> m_screens;  // in the order they appeared
    QPointer<QWidget> m_hostFocus;
};
