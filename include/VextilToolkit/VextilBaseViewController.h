#pragma once

#include <VextilToolkit/VextilToolkitExport.h>

#include <QMutex>
#include <QPointer>
#include <QStackedWidget>
#include <QVariant>
#include <QWidget>

#include <functional>

/// Base of the toolkit's screens. A screen is presented over another widget's window, covering
/// it, and dismissed again; it knows which screen it presented and what presented it. Screens
/// are portrait only and never rotate: on Android a phone is held in portrait while one shows,
/// and in a window of another shape a screen lays itself out in a portrait region
/// (portraitRect). GUI thread only.
class VEXTIL_WIDGETS_EXPORT VextilBaseViewController : public QWidget {
    Q_OBJECT
public:
    explicit VextilBaseViewController(QWidget *parent = nullptr);
    ~VextilBaseViewController() override;

    /// Orientations the screen supports: portrait only.
    virtual Qt::ScreenOrientations supportedInterfaceOrientations() const { return Qt::PortraitOrientation; }
    /// Whether the screen follows the device's rotation: never.
    virtual bool shouldAutorotate() const { return false; }
    /// Where the screen lays out its content: in a window of another shape than a phone's, the
    /// largest rectangle of a phone's proportions (9:21 to 3:4) centred in the screen; the whole
    /// screen otherwise. The screen's background shows beyond it.
    QRect portraitRect() const;
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
    void holdPortrait(bool hold);

    mutable QMutex m_orientationMutex;
    QVariant m_previousOrientation;
    QPointer<QWidget> m_presenting;
    bool m_loaded = false;
    bool m_beingDismissed = false;
    bool m_holdsPortrait = false;
};

/// A stack of screens for hosts that wrap toolkit screens in a navigation stack of their own. Like
/// the screens it is portrait only and never rotates: each screen pushed onto it lays itself out
/// in a portrait region of the stack (see VextilBaseViewController::portraitRect). The toolkit
/// itself never creates one. GUI thread only.
class VEXTIL_WIDGETS_EXPORT VextilBaseNavigationController : public QStackedWidget {
    Q_OBJECT
public:
    using QStackedWidget::QStackedWidget;

    /// Orientations the stack supports: portrait only.
    virtual Qt::ScreenOrientations supportedInterfaceOrientations() const { return Qt::PortraitOrientation; }
    /// Whether the stack follows the device's rotation: never.
    virtual bool shouldAutorotate() const { return false; }
    /// Shows a screen on top of the stack, which takes ownership of it.
    void pushViewController(QWidget *controller);
    /// Removes the top screen (never the last one) and returns it; the caller owns it then.
    QWidget *popViewController();
};
