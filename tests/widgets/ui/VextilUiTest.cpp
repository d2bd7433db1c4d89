#include <VextilToolkit/VextilBaseViewController.h>
#include <VextilToolkit/VextilDefaultColorScheme.h>
#include <VextilToolkit/VextilRepository.h>
#include <VextilToolkit/VextilToolkitSettings.h>

#include "core/VextilPortraitLock.h"
#include "widgets/ui/NavigationBarView.h"
#include "widgets/ui/VextilButton.h"
#include "Presses.h"

#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

#include <functional>
#include <tuple>
#include <vector>

namespace {

TEST(ColorScheme, EveryDefaultIsThePalettesColourForEveryStateButTextColour)
{
    VextilDefaultColorScheme scheme;
    using Getter = std::function<QColor(int state)>;
    const QString white = QStringLiteral("#ffffff"), black = QStringLiteral("#000000");
    const QString deepBlue = QStringLiteral("#3b579c"), violet = QStringLiteral("#6657f2");
    const QString darkGrey = QStringLiteral("#616161");
    // Every colour getter of the scheme with the colour it must answer; plain getters ignore the state.
    const std::vector<std::tuple<const char *, Getter, QString>> table{
        {"backgroundColor", [&](int) { return scheme.backgroundColor(); }, white},
        {"iconColorForState", [&](int s) { return scheme.iconColorForState(s); }, violet},
        {"buttonBackgroundColorForState", [&](int s) { return scheme.buttonBackgroundColorForState(s); }, deepBlue},
        {"buttonTintColorForState", [&](int s) { return scheme.buttonTintColorForState(s); }, white},
        {"cancelButtonBackgroundColorForState", [&](int s) { return scheme.cancelButtonBackgroundColorForState(s); }, white},
        {"cancelButtonTintColorForState", [&](int s) { return scheme.cancelButtonTintColorForState(s); }, darkGrey},
        {"navigationTitleColor", [&](int) { return scheme.navigationTitleColor(); }, deepBlue},
        {"backButtonColor", [&](int) { return scheme.backButtonColor(); }, deepBlue},
        {"topSplitBackgroundColor", [&](int) { return scheme.topSplitBackgroundColor(); }, white},
        {"bottomSplitBackgroundColor", [&](int) { return scheme.bottomSplitBackgroundColor(); }, white},
        {"titleColor", [&](int) { return scheme.titleColor(); }, violet},
        {"subtitleColor", [&](int) { return scheme.subtitleColor(); }, darkGrey},
        {"topSplitIconColor", [&](int) { return scheme.topSplitIconColor(); }, violet},
        {"bottomSplitIconColor", [&](int) { return scheme.bottomSplitIconColor(); }, violet},
        {"popUpBackgroundColor", [&](int) { return scheme.popUpBackgroundColor(); }, white},
        {"popUpTextColor", [&](int) { return scheme.popUpTextColor(); }, black},
        {"popUpButtonTintColorForState", [&](int s) { return scheme.popUpButtonTintColorForState(s); }, white},
        {"popUpButtonBackgroundColorForState", [&](int s) { return scheme.popUpButtonBackgroundColorForState(s); }, violet},
        {"popUpIconColorForState", [&](int s) { return scheme.popUpIconColorForState(s); }, black},
        {"confirmQuestionTextColor", [&](int) { return scheme.confirmQuestionTextColor(); }, deepBlue},
    };
    EXPECT_EQ(table.size() + 2, 22u) << "with textColorForState and isBackgroundSplited, the whole scheme";
    for (const auto &[name, getter, expected] : table)
        for (int state : {0, 1, 2, 4}) {
            const QColor colour = getter(state);
            EXPECT_EQ(colour.name(), expected) << name << " state " << state;
            EXPECT_EQ(colour.alphaF(), 1.0f) << name << " state " << state;
        }

    EXPECT_EQ(scheme.textColorForState(0).name(), "#ababab");
    EXPECT_EQ(scheme.textColorForState(1).name(), black);
    EXPECT_EQ(scheme.textColorForState(2).name(), "#1cd482");
    EXPECT_FALSE(scheme.textColorForState(4).isValid());
    EXPECT_FALSE(scheme.isBackgroundSplited());
}

TEST(ToolkitSettings, OnlyInitWithAuthKeyReachesTheStoreAndTheDefaultSchemeIsSet)
{
    auto *settings = VextilToolkitSettings::sharedInstance();
    EXPECT_NE(dynamic_cast<VextilDefaultColorScheme *>(settings->getColorScheme().get()), nullptr);
    settings->setAuthKey(QStringLiteral("only-here"));
    EXPECT_FALSE(VextilRepository::sharedInstance()->authKey().has_value());
    EXPECT_TRUE(settings->initWithAuthKey(QString()));
    EXPECT_EQ(VextilRepository::sharedInstance()->authKey(), QString()) << "an empty key is passed on as it is";
    EXPECT_TRUE(settings->initWithAuthKey(std::nullopt));
    EXPECT_FALSE(VextilRepository::sharedInstance()->authKey().has_value());
}

TEST(NavigationBar, ButtonsSitTenFromTheEdgesOnTheTitlesLineAndActOnPress)
{
    NavigationBarView bar(QStringLiteral("Register selfie"), true);
    bar.resize(390, 76);
    bar.show();  // widgets lay out once shown
    const QRect title = bar.titleLabel()->geometry(), back = bar.backButton()->geometry(), help = bar.helpButton()->geometry();
    EXPECT_EQ(back.size(), QSize(28, 28)) << "a 24-pixel image plus 2 on each side";
    EXPECT_EQ(back.left(), 10);
    EXPECT_EQ(help.right() + 1, 380);
    EXPECT_NEAR(title.center().x(), 195, 1);
    EXPECT_EQ(title.bottom() + 1, 66);
    EXPECT_NEAR(back.center().y(), title.center().y(), 1);

    QSignalSpy pressed(bar.backButton(), &QAbstractButton::pressed);
    presses::pressWhereDrawn(bar.backButton());
    EXPECT_EQ(pressed.count(), 1) << "fires as the finger lands, before any release";
    presses::releaseWhereDrawn(bar.backButton());

    NavigationBarView plain(QStringLiteral("Confirm"), false);
    EXPECT_EQ(plain.helpButton(), nullptr);
    plain.setHelpButtonTintColor(Qt::red);  // nothing to tint, nothing breaks
}

TEST(ButtonCentring, SpacingMovesImageLeftAndTitleRight)
{
    VextilButton button;
    centerButtonAndImageWithSpacing(&button, 0);
    EXPECT_EQ(button.imageEdgeInsets(), QMarginsF());
    EXPECT_EQ(button.titleEdgeInsets(), QMarginsF());
    centerButtonAndImageWithSpacing(&button, 15);
    // QMarginsF is (left, top, right, bottom): image right 15, title left 15.
    EXPECT_EQ(button.imageEdgeInsets(), QMarginsF(0, 0, 15, 0));
    EXPECT_EQ(button.titleEdgeInsets(), QMarginsF(15, 0, 0, 0));
}

class Screen : public VextilBaseViewController {
public:
    int appearances = 0;

protected:
    void viewWillAppear(bool) override { ++appearances; }
};

TEST(BaseViewController, PresentsOverTheHostWindowAndDismissesWithACompletionAfterwards)
{
    QWidget host;
    host.resize(390, 844);
    host.show();
    Screen camera, review;
    EXPECT_EQ(camera.supportedInterfaceOrientations(), Qt::PortraitOrientation);
    EXPECT_FALSE(camera.shouldAutorotate());

    bool presented = false;
    VextilBaseViewController::present(&host, &camera, true, [&] { presented = true; });
    EXPECT_TRUE(QTest::qWaitFor([&] { return presented; }, 2000));
    EXPECT_EQ(camera.geometry(), host.rect());
    EXPECT_TRUE(VextilPortraitLock::isHeld()) << "a phone is held upright while a screen shows";
    EXPECT_EQ(VextilBaseViewController::presentedViewControllerOf(&host), &camera);
    EXPECT_EQ(camera.presentingViewController(), &host);

    camera.presentViewController(&review, false);
    QTest::qWait(10);
    EXPECT_EQ(camera.presentedViewController(), &review);
    host.resize(400, 900);
    EXPECT_EQ(review.geometry(), QRect(0, 0, 400, 900)) << "screens follow the window's size";

    // The facade walks from the host to the top-most screen.
    QWidget *top = &host;
    while (VextilBaseViewController *next = VextilBaseViewController::presentedViewControllerOf(top))
        top = next;
    EXPECT_EQ(top, &review);

    bool reviewGone = false;
    review.dismissViewControllerAnimated(false, [&] { reviewGone = !review.isVisible(); });
    EXPECT_TRUE(QTest::qWaitFor([&] { return reviewGone; }, 2000));
    EXPECT_EQ(camera.presentedViewController(), nullptr);
    EXPECT_EQ(camera.appearances, 2) << "the camera screen appears again under the review";
    EXPECT_TRUE(VextilPortraitLock::isHeld());

    bool cameraGone = false;
    camera.dismissViewControllerAnimated(true, [&] { cameraGone = !camera.isVisible(); });
    EXPECT_TRUE(QTest::qWaitFor([&] { return cameraGone; }, 2000));
    EXPECT_EQ(VextilBaseViewController::presentedViewControllerOf(&host), nullptr);
    EXPECT_FALSE(VextilPortraitLock::isHeld()) << "the host's orientation is given back";
}

// A host's own navigation stack of toolkit screens, in a landscape window: portrait only, and
// each screen lays itself out in a portrait region of the stack.
TEST(BaseNavigationController, StacksScreensThatEachKeepAPortraitRegion)
{
    VextilBaseNavigationController stack;
    stack.resize(1280, 800);
    stack.show();
    EXPECT_EQ(stack.supportedInterfaceOrientations(), Qt::PortraitOrientation);
    EXPECT_FALSE(stack.shouldAutorotate());
    auto *first = new Screen, *second = new Screen;
    stack.pushViewController(first);
    stack.pushViewController(second);
    EXPECT_EQ(stack.currentWidget(), second);
    EXPECT_EQ(second->size(), QSize(1280, 800));
    EXPECT_EQ(second->portraitRect(), QRect(340, 0, 600, 800)) << "3:4, centred";
    EXPECT_EQ(stack.popViewController(), second);
    delete second;
    EXPECT_EQ(stack.currentWidget(), first);
    EXPECT_EQ(stack.popViewController(), nullptr) << "the last screen stays";
    for (const auto &[window, region] : {std::pair{QSize(390, 844), QRect(0, 0, 390, 844)},  // a phone: all of it
                                         {QSize(844, 390), QRect(276, 0, 292, 390)},        // on its side
                                         {QSize(400, 1200), QRect(0, 133, 400, 934)}}) {    // taller than 9:21
        stack.resize(window);
        EXPECT_EQ(first->portraitRect(), region) << window.width() << "x" << window.height();
    }
}

}  // namespace
