#pragma once

#include <VextilToolkit/VextilToolkitExport.h>

#include <QMutex>
#include <QPointer>
#include <QVariant>
#include <QWidget>

#include <functional>

/// Base of the toolkit's screens. A screen is presented over another widget's window, covering
/// it, and dismissed again; it knows which screen it presented and what presented it. Screens
/// are portrait only and never rotate. GUI thread only.
class VEXTIL_EXPORT VextilBaseViewController : public QWidget {
    Q_OBJECT
public:
    explicit VextilBaseViewController(QWidget *parent = nullptr);
    ~VextilBaseViewController() override;

    /// Orientations the screen supports: portrait only.
    virtual Qt::ScreenOrientations supportedInterfaceOrientations() const { return Qt::PortraitOrientation; }
    /// Whether the screen follows the device's rotation: never.
    virtual bool shouldAutorotate() const { return false; }
    /// Kept for subclasses; its accessors are synchronised.
    QVariant previousOrientation() const;
    void setPreviousOrientation(const QVariant &orientation);

    /// Shows `controller` over this screen's window; completion runs once it is shown. A screen is
    /// never presented over itself or over a screen it presented; one already on show stays.
    void presentViewController(VextilBaseViewController *controller, bool animated, std::function<void()> completion = {});
    /// Shows `controller` over any widget's window (a host's own window, for instance).
    static void present(QWidget *presenter, VextilBaseViewController *controller, bool animated,
                        std::function<void()> completion = {});
    /// Dismisses what this screen presented (and everything above it) or, when it presented
    /// nothing, this screen itself. Completion runs on the GUI thread once the screens are gone.
    void dismissViewControllerAnimated(bool animated, std::function<void()> completion = {});

    /// Whether this screen is on its way out (from the start of its dismissal until it appears again).
    bool isBeingDismissed() const { return m_beingDismissed; }

    /// The screen this one presented, or null.
    VextilBaseViewController *presentedViewController() const;
    /// The widget that presented this screen, or null.
    QWidget *presentingViewController() const { return m_presenting; }
    /// The screen presented over a widget (not only a toolkit screen), or null.
    static VextilBaseViewController *presentedViewControllerOf(QWidget *presenter);

protected:
    /// Called once, before the screen first appears.
    virtual void viewDidLoad() {}
    /// Called before the screen is shown, and again when a screen it presented goes away.
    virtual void viewWillAppear(bool animated) { Q_UNUSED(animated); }
    /// Called once the screen is fully shown.
    virtual void viewDidAppear(bool animated) { Q_UNUSED(animated); }
    bool isViewLoaded() const { return m_loaded; }

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void appear(bool animated, std::function<void()> completion);
    void disappear(bool animated, std::function<void()> completion);
    void loadViewIfNeeded();
    bool presentsAbove(const QWidget *widget) const;

    mutable QMutex m_orientationMutex;
    QVariant m_previousOrientation;
    QPointer<QWidget> m_presenting;
    bool m_loaded = false;
    bool m_beingDismissed = false;
};
