#pragma once

#include <QObject>
#include <QPointer>
#include <QQuickItem>
#include <QtQml/qqmlregistration.h>

/// Keeps the keyboard in one part of a window (FocusTrap): while a scope is set, Tab and
/// Shift+Tab go round the focusable items inside it, never to covered ones or the host's
/// beneath. Qt Quick moves the focus inside the focused control itself, before any parent hears
/// the key, so the trap listens on the window.
class VextilQuickFocusTrap : public QObject {
    Q_OBJECT
    QML_NAMED_ELEMENT(FocusTrap)
    Q_PROPERTY(QQuickItem *scope READ scope WRITE setScope NOTIFY scopeChanged)
public:
    explicit VextilQuickFocusTrap(QObject *parent = nullptr) : QObject(parent) {}

    QQuickItem *scope() const { return m_scope; }
    void setScope(QQuickItem *scope);

Q_SIGNALS:
    void scopeChanged();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void cycle(bool forward);
    bool holds(QQuickItem *item) const;

    QPointer<QQuickItem> m_scope;
    QPointer<QQuickWindow> m_window;
};
