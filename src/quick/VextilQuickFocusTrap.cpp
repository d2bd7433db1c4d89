#include "quick/VextilQuickFocusTrap.h"

#include <QKeyEvent>
#include <QQuickWindow>

void VextilQuickFocusTrap::setScope(QQuickItem *scope)
{
    if (scope == m_scope)
        return;
    if (m_window)
        m_window->removeEventFilter(this);
    m_scope = scope;
    m_window = scope ? scope->window() : nullptr;
    if (m_window)
        m_window->installEventFilter(this);
    Q_EMIT scopeChanged();
}

bool VextilQuickFocusTrap::eventFilter(QObject *, QEvent *event)
{
    if (event->type() != QEvent::KeyPress || !m_scope)
        return false;
    const auto *key = static_cast<QKeyEvent *>(event);
    if (key->modifiers() & (Qt::ControlModifier | Qt::AltModifier))
        return false;
    const bool backwards = key->key() == Qt::Key_Backtab || (key->key() == Qt::Key_Tab && (key->modifiers() & Qt::ShiftModifier));
    if (key->key() != Qt::Key_Tab && key->key() != Qt::Key_Backtab)
        return false;
    cycle(!backwards);
    return true;
}

bool VextilQuickFocusTrap::holds(QQuickItem *item) const
{
    for (QQuickItem *at = item; at; at = at->parentItem())
        if (at == m_scope)
            return item != m_scope;
    return false;
}

void VextilQuickFocusTrap::cycle(bool forward)
{
    QQuickItem *start = m_window ? m_window->activeFocusItem() : nullptr;
    if (!start || !holds(start)) {
        // The focus is outside (or on the scope itself): in from the scope's edge.
        start = m_scope;
    }
    QQuickItem *item = start;
    // The window's focus chain is a ring; once round it is enough.
    for (int step = 0; step < 10000; ++step) {
        item = item->nextItemInFocusChain(forward);
        if (!item || item == start)
            return;
        if (holds(item) && item->isVisible() && item->isEnabled()) {
            item->forceActiveFocus(forward ? Qt::TabFocusReason : Qt::BacktabFocusReason);
            return;
        }
    }
}
