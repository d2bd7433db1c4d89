#include <VextilToolkit/NavigationBarView.h>
#include <VextilToolkit/VextilBaseViewController.h>
#include <VextilToolkit/VextilButton.h>
#include <VextilToolkit/VextilDefaultColorScheme.h>
#include <VextilToolkit/VextilRepository.h>
#include <VextilToolkit/VextilToolkitSettings.h>

#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

namespace {

TEST(ColorScheme, DefaultsAreThePaletteAndOnlyTextColourDependsOnState)
{
    VextilDefaultColorScheme scheme;
    EXPECT_EQ(scheme.buttonBackgroundColorForState(1).name(), "#3b579c");
    EXPECT_EQ(scheme.popUpButtonBackgroundColorForState(1).name(), "#6657f2");
    EXPECT_EQ(scheme.cancelButtonTintColorForState(1).name(), "#616161");
    EXPECT_EQ(scheme.textColorForState(0).name(), "#ababab");
    EXPECT_EQ(scheme.textColorForState(1), QColor(Qt::black));
    EXPECT_EQ(scheme.textColorForState(2).name(), "#1cd482");
    EXPECT_FALSE(scheme.textColorForState(4).isValid());
    for (int state : {0, 1, 2, 4})
        EXPECT_EQ(scheme.popUpIconColorForState(state), QColor(Qt::black));
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
    QTest::mousePress(bar.backButton(), Qt::LeftButton);
    EXPECT_EQ(pressed.count(), 1) << "fires as the finger lands, before any release";
    QTest::mouseRelease(bar.backButton(), Qt::LeftButton);

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

    bool cameraGone = false;
    camera.dismissViewControllerAnimated(true, [&] { cameraGone = !camera.isVisible(); });
    EXPECT_TRUE(QTest::qWaitFor([&] { return cameraGone; }, 2000));
    EXPECT_EQ(VextilBaseViewController::presentedViewControllerOf(&host), nullptr);
}

}  // namespace
