#include "widgets/ui/VextilFocusTrap.h"

#include <VextilToolkit/VextilBaseViewController.h>

#include <QApplication>
#include <QKeyEvent>

namespace {
const char *const kScopeProperty = "vextilFocusScope";
}

VextilFocusTrap &VextilFocusTrap::instance()
{
    static VextilFocusTrap trap;
    return trap;
}

void VextilFocusTrap::screenShown(VextilBaseViewController *screen)
{
    VextilFocusTrap &trap = instance();
    trap.m_screens.removeAll(nullptr);
    if (trap.m_screens.isEmpty()) {
        trap.m_hostFocus = QApplication::focusWidget();
        qApp->installEventFilter(&trap);
    }
    trap.m_screens.removeAll(screen);
    trap.m_screens.append(screen);
}

void VextilFocusTrap::screenHidden(VextilBaseViewController *screen)
{
    VextilFocusTrap &trap = instance();
    if (!trap.m_screens.removeAll(screen))
        return;
    trap.m_screens.removeAll(nullptr);
    if (!trap.m_screens.isEmpty())
        return;
    qApp->removeEventFilter(&trap);
    if (QWidget *focus = QApplication::focusWidget(); !focus || focus == screen || screen->isAncestorOf(focus))
        returnFocus();
    trap.m_hostFocus = nullptr;
}

void VextilFocusTrap::setScope(QWidget *overlay, bool scope) { overlay->setProperty(kScopeProperty, scope); }

void VextilFocusTrap::returnFocus()
{
    const VextilFocusTrap &trap = instance();
    if (trap.m_hostFocus && trap.m_hostFocus->isVisible())
        trap.m_hostFocus->setFocus(Qt::OtherFocusReason);
}

QWidget *VextilFocusTrap::activeScope(const QWidget *window)
{
    const VextilFocusTrap &trap = instance();
    for (qsizetype i = trap.m_screens.size() - 1; i >= 0; --i) {
        VextilBaseViewController *screen = trap.m_screens[i];
        if (!screen || screen->window() != window || !screen->isVisible() || screen->isBeingDismissed())
            continue;
        // Children are stacked in order: the last visible scope lies on top.
        const QObjectList children = screen->children();
        for (auto child = children.rbegin(); child != children.rend(); ++child) {
            auto *overlay = qobject_cast<QWidget *>(*child);
            if (overlay && overlay->isVisible() && overlay->property(kScopeProperty).toBool())
                return overlay;
        }
        return screen;
    }
    return nullptr;
}

QWidgetList VextilFocusTrap::tabOrder(QWidget *scope)
{
    QWidgetList order;
    if (!scope)
        return order;
    // The focus chain runs through the whole window and comes back round.
    for (QWidget *w = scope->nextInFocusChain(); w && w != scope; w = w->nextInFocusChain())
        if (scope->isAncestorOf(w) && w->isVisible() && w->isEnabled() && (w->focusPolicy() & Qt::TabFocus))
            order.append(w);
    return order;
}

bool VextilFocusTrap::moveFocus(bool forward)
{
    QWidget *focus = QApplication::focusWidget();
    const QWidgetList order = tabOrder(focus ? activeScope(focus->window()) : nullptr);
    if (order.isEmpty())
        return false;
    const qsizetype at = order.indexOf(focus), n = order.size();
    const qsizetype next = at < 0 ? (forward ? 0 : n - 1) : (at + (forward ? 1 : n - 1)) % n;
    order[next]->setFocus(forward ? Qt::TabFocusReason : Qt::BacktabFocusReason);
    return true;
}

bool VextilFocusTrap::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::KeyPress) {
        const auto *key = static_cast<QKeyEvent *>(event);
        const bool tab = key->key() == Qt::Key_Tab && !(key->modifiers() & (Qt::ControlModifier | Qt::AltModifier));
        const bool backtab = key->key() == Qt::Key_Backtab;
        if ((tab || backtab) && watched == QApplication::focusWidget())
            return moveFocus(tab && !(key->modifiers() & Qt::ShiftModifier));
    } else if (event->type() == QEvent::FocusIn) {
        auto *widget = qobject_cast<QWidget *>(watched);
        QWidget *scope = widget ? activeScope(widget->window()) : nullptr;
        if (scope && widget != scope && !scope->isAncestorOf(widget)) {
            // A covered control or the host's own: the focus goes back where the user is.
            if (const QWidgetList order = tabOrder(scope); !order.isEmpty())
                order.first()->setFocus(Qt::OtherFocusReason);
        }
    }
    return QObject::eventFilter(watched, event);
}
