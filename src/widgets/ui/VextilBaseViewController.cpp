#include <VextilToolkit/VextilBaseViewController.h>

#include "core/VextilMainQueue.h"
#include "core/VextilPortraitLock.h"
#include "core/VextilPortraitRegion.h"
#include "widgets/ui/VextilFocusTrap.h"

#include <QApplication>
#include <QEvent>
#include <QPropertyAnimation>

namespace {
constexpr int kAnimationMs = 250;
}

VextilBaseViewController::VextilBaseViewController(QWidget *parent) : QWidget(parent)
{
    setAttribute(Qt::WA_StyledBackground);
    setAutoFillBackground(true);
    setFocusPolicy(Qt::ClickFocus);  // holds the focus between its controls' turns, never by Tab
}

VextilBaseViewController::~VextilBaseViewController()
{
    holdPortrait(false);
    VextilFocusTrap::screenHidden(this);
}

void VextilBaseViewController::holdPortrait(bool hold)
{
    if (hold == m_holdsPortrait)
        return;
    m_holdsPortrait = hold;
    if (hold)
        VextilPortraitLock::acquire();
    else
        VextilPortraitLock::release();
}

QRect VextilBaseViewController::portraitRect() const
{
    return VextilPortraitRegion::of(size()).toRect();
}

QVariant VextilBaseViewController::previousOrientation() const
{
    QMutexLocker lock(&m_orientationMutex);
    return m_previousOrientation;
}

void VextilBaseViewController::setPreviousOrientation(const QVariant &orientation)
{
    QMutexLocker lock(&m_orientationMutex);
    m_previousOrientation = orientation;
}

VextilBaseViewController *VextilBaseViewController::presentedViewControllerOf(QWidget *presenter)
{
    if (!presenter || !presenter->window())
        return nullptr;
    for (auto *screen : presenter->window()->findChildren<VextilBaseViewController *>(Qt::FindDirectChildrenOnly))
        if (screen->m_presenting == presenter && !screen->isHidden())  // on show, even in a hidden window
            return screen;
    return nullptr;
}

VextilBaseViewController *VextilBaseViewController::presentedViewController() const
{
    return presentedViewControllerOf(const_cast<VextilBaseViewController *>(this));
}

void VextilBaseViewController::presentViewController(VextilBaseViewController *controller, bool animated,
                                                     std::function<void()> completion)
{
    present(this, controller, animated, std::move(completion));
}

void VextilBaseViewController::present(QWidget *presenter, VextilBaseViewController *controller, bool animated,
                                       std::function<void()> completion)
{
    if (!presenter || !controller || controller == presenter || controller->isAncestorOf(presenter)
        || controller->presentsAbove(presenter))
        return;
    if (controller->m_presenting && !controller->isHidden() && !controller->m_beingDismissed)
        return;  // already on show: presenting it again would stack it over itself
    // A screen covers the presenter's whole window and follows its size.
    QWidget *window = presenter->window();
    controller->m_presenting = presenter;
    controller->setParent(window);
    controller->setGeometry(window->rect());
    window->installEventFilter(controller);
    controller->appear(animated, std::move(completion));
}

void VextilBaseViewController::loadViewIfNeeded()
{
    if (!m_loaded) {
        m_loaded = true;
        viewDidLoad();
    }
}

bool VextilBaseViewController::presentsAbove(const QWidget *widget) const
{
    // Whether `widget` lies in the chain of screens this one presented; the chain is short and
    // cannot loop, since a screen is never presented over one above it.
    for (auto *screen = presentedViewController(); screen; screen = screen->presentedViewController())
        if (screen == widget)
            return true;
    return false;
}

void VextilBaseViewController::appear(bool animated, std::function<void()> completion)
{
    m_beingDismissed = false;
    holdPortrait(true);                  // a phone stays upright while a screen shows
    VextilFocusTrap::screenShown(this);  // and the keyboard on the top-most one (first: the
                                         // screen may take the focus as it loads)
    loadViewIfNeeded();
    viewWillAppear(animated);
    show();
    raise();
    // What lies beneath gives up the focus now, not when a control here takes it once shown: no
    // key reaches it meanwhile, its last changes go unspoken, and a screen reader names this
    // screen as it arrives.
    if (QWidget *focus = QApplication::focusWidget(); !focus || !isAncestorOf(focus))
        setFocus(Qt::OtherFocusReason);
    const auto finish = [this, animated, completion = std::move(completion)] {
        viewDidAppear(animated);
        if (completion)
            completion();
    };
    if (!animated) {
        VextilMainQueue::dispatchAsync(this, finish);
        return;
    }
    // Slides up from the bottom edge, as a modal screen does.
    auto *slide = new QPropertyAnimation(this, "pos", this);
    slide->setDuration(kAnimationMs);
    slide->setStartValue(QPoint(0, parentWidget()->height()));
    slide->setEndValue(QPoint(0, 0));
    slide->setEasingCurve(QEasingCurve::OutCubic);
    connect(slide, &QPropertyAnimation::finished, this, finish);
    slide->start(QAbstractAnimation::DeleteWhenStopped);
}

void VextilBaseViewController::dismissViewControllerAnimated(bool animated, std::function<void()> completion)
{
    VextilBaseViewController *top = presentedViewController();
    if (!top) {
        // Nothing presented: this screen itself goes, as its presenter would dismiss it.
        disappear(animated, std::move(completion));
        return;
    }
    // Take down the whole chain above this screen, the top-most with the animation.
    QList<VextilBaseViewController *> chain;
    for (; top; top = top->presentedViewController())
        chain.prepend(top);
    for (qsizetype i = 1; i < chain.size(); ++i)
        chain[i]->disappear(false, {});
    chain.first()->disappear(animated, std::move(completion));
}

void VextilBaseViewController::disappear(bool animated, std::function<void()> completion)
{
    m_beingDismissed = true;
    // Hidden with the focus, Qt would pass it along the window's focus chain, through covered
    // controls and the host's own, each spoken by a screen reader: it goes straight to the
    // screen beneath (which hands it on as it appears again) or, at the end, back to the host.
    if (QWidget *focus = QApplication::focusWidget(); focus && (focus == this || isAncestorOf(focus))) {
        if (auto *beneath = qobject_cast<VextilBaseViewController *>(m_presenting.data()))
            beneath->setFocus(Qt::OtherFocusReason);
        else
            VextilFocusTrap::returnFocus();
    }
    const auto finish = [this, animated, completion = std::move(completion)] {
        hide();
        holdPortrait(false);
        VextilFocusTrap::screenHidden(this);
        if (QWidget *window = parentWidget())
            window->removeEventFilter(this);
        // The screen underneath appears again, as when a modal screen goes.
        auto *presenter = qobject_cast<VextilBaseViewController *>(m_presenting.data());
        m_presenting = nullptr;
        if (presenter) {
            presenter->viewWillAppear(animated);
            presenter->viewDidAppear(animated);
        }
        if (completion)
            completion();
    };
    if (!animated || !parentWidget()) {
        hide();
        VextilMainQueue::dispatchAsync(this, finish);
        return;
    }
    auto *slide = new QPropertyAnimation(this, "pos", this);
    slide->setDuration(kAnimationMs);
    slide->setEndValue(QPoint(0, parentWidget()->height()));
    slide->setEasingCurve(QEasingCurve::InCubic);
    connect(slide, &QPropertyAnimation::finished, this, finish);
    slide->start(QAbstractAnimation::DeleteWhenStopped);
}

bool VextilBaseViewController::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == parentWidget() && event->type() == QEvent::Resize)
        setGeometry(parentWidget()->rect());
    return QWidget::eventFilter(watched, event);
}
