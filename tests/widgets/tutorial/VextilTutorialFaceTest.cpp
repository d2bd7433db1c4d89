#include <VextilToolkit/VextilDefaultColorScheme.h>
#include <VextilToolkit/VextilToolkitSettings.h>

#include "widgets/tutorial/VextilTutorialFace.h"
#include "Presses.h"

#include <QPointer>
#include <QTest>

#include <gtest/gtest.h>

namespace {

// A host scheme that differs from the default in every colour the tutorial reads.
class HostScheme : public VextilDefaultColorScheme {
public:
    QColor popUpBackgroundColor() const override { return QColor("#101820"); }
    QColor popUpTextColor() const override { return QColor("#fee715"); }
    QColor popUpButtonTintColorForState(int) const override { return QColor("#000001"); }
    QColor popUpButtonBackgroundColorForState(int) const override { return QColor("#ff5733"); }
    QColor popUpIconColorForState(int state) const override { return state == 1 ? QColor("#00ff00") : QColor(); }
};

TEST(TutorialFace, TheBoxKeepsItsSizeAndTheTipsTheirProportions)
{
    for (QSize screen : {QSize(390, 844), QSize(1080, 1920)}) {
        VextilTutorialFace tutorial;
        tutorial.resize(screen);
        tutorial.show();  // widgets lay out once shown
        const QRect box = tutorial.contentView()->geometry();
        EXPECT_EQ(box.size(), QSize(288, 454));
        EXPECT_EQ(box.center(), tutorial.rect().center());
        const QRect icon = tutorial.topLeftIconImageView()->geometry();
        EXPECT_NEAR(icon.width(), 100.8, 1);
        EXPECT_EQ(icon.width(), icon.height());
        EXPECT_EQ(icon.topLeft(), QPoint(30, 40));
        EXPECT_NEAR(tutorial.topLeftTipLabel()->width(), 110.88, 1);
        EXPECT_NEAR(tutorial.topLeftTipLabel()->height(), 40.73, 1);
        EXPECT_NEAR(tutorial.bottomLeftTipLabel()->width(), 100.8, 1);
        EXPECT_NEAR(tutorial.bottomLeftTipLabel()->height(), 37.03, 1);
        EXPECT_EQ(tutorial.topRightIconImageView()->geometry().right() + 1, 288 - 30);
        const QRect next = tutorial.nextButton()->geometry();
        EXPECT_EQ(next.size(), QSize(230, 44));
        EXPECT_EQ(next.bottom() + 1, 454 - 20);
    }
}

// On a screen too short or narrow for the box (a phone on its side), the whole box shrinks,
// text included, to fit the screen's portrait region; the tips keep their places in it.
TEST(TutorialFace, OnASmallScreenTheWholeBoxShrinksToFit)
{
    for (QSize screen : {QSize(844, 390), QSize(1280, 400), QSize(250, 600)}) {
        SCOPED_TRACE(QStringLiteral("%1x%2").arg(screen.width()).arg(screen.height()).toStdString());
        VextilTutorialFace tutorial;
        tutorial.resize(screen);
        tutorial.show();
        const QRect box = tutorial.contentView()->geometry();
        EXPECT_TRUE(tutorial.rect().adjusted(8, 8, -8, -8).contains(box)) << "the box leaves a margin";
        EXPECT_NEAR(double(box.width()) / box.height(), 288.0 / 454, 0.01) << "the box keeps its shape";
        const double scale = box.width() / 288.0;
        EXPECT_LT(scale, 0.95);
        EXPECT_EQ(box.center(), tutorial.rect().center());
        const QRect next = tutorial.nextButton()->geometry();
        EXPECT_NEAR(next.bottom() + 1, box.height() - 20 * scale, 1.5) << "the button keeps its place";
        EXPECT_NEAR(tutorial.nextButton()->font().pixelSize(), 19 * scale, 1) << "and its title shrinks with it";
        EXPECT_NEAR(tutorial.topLeftTipLabel()->baseFont().pixelSize(), 10 * scale, 1);
        for (QWidget *part : QList<QWidget *>{tutorial.topLeftIconImageView(), tutorial.bottomRightImageView(),
                                              tutorial.bottomLeftTipLabel(), tutorial.bottomRightTipLabel(), tutorial.nextButton()})
            EXPECT_TRUE(QRect(QPoint(0, 0), box.size()).contains(part->geometry())) << "inside the box";
    }
}

TEST(TutorialFace, ShowsTheFourTipsInTheSchemesColours)
{
    VextilToolkitSettings::sharedInstance()->setColorScheme(std::make_shared<HostScheme>());
    VextilTutorialFace tutorial;
    EXPECT_EQ(tutorial.topLeftTipLabel()->text(), "Look for a brighter spot  with no light reflection");
    EXPECT_EQ(tutorial.bottomRightTipLabel()->text(), "The photo is taken automatically");
    EXPECT_EQ(tutorial.topRightIconImageView()->imageName(), "ilustraHat");
    EXPECT_EQ(tutorial.bottomRightImageView()->tintColor(), QColor("#00ff00")) << "asked for state 1";
    EXPECT_EQ(tutorial.topLeftTipLabel()->palette().color(QPalette::WindowText), QColor("#fee715"));
    EXPECT_EQ(tutorial.nextButton()->backgroundColor(), QColor("#ff5733"));
    EXPECT_EQ(tutorial.nextButton()->titleColor(), QColor("#000001"));
    EXPECT_EQ(tutorial.nextButton()->text(), "OK, I got it");
    EXPECT_EQ(tutorial.nextButton()->font().pixelSize(), 19);
    EXPECT_EQ(tutorial.topLeftTipLabel()->font().pixelSize(), 10);
    VextilToolkitSettings::sharedInstance()->setColorScheme(nullptr);
    VextilTutorialFace fallback;  // a null scheme falls back to the default colours
    EXPECT_EQ(fallback.nextButton()->backgroundColor(), VextilDefaultColorScheme::violet());
}

TEST(TutorialFace, PressingNextFadesOutLeavesTheScreenAndCompletesOnce)
{
    QWidget screen;
    screen.resize(390, 844);
    screen.show();
    QPointer<VextilTutorialFace> tutorial = new VextilTutorialFace(&screen);
    tutorial->setGeometry(screen.rect());
    tutorial->show();
    ASSERT_NE(tutorial->blurEffectView(), nullptr);
    int completions = 0;
    tutorial->setCompletionHandler([&] { ++completions; });

    presses::touchWhereDrawn(tutorial->nextButton());
    tutorial->didTappedNextButton();  // a second tap changes nothing
    QTest::qWait(100);
    EXPECT_EQ(completions, 0) << "still fading";
    EXPECT_LT(tutorial->alpha(), 1.0);
    EXPECT_TRUE(QTest::qWaitFor([&] { return completions == 1; }, 2000));
    QTest::qWait(50);
    EXPECT_EQ(completions, 1);
    EXPECT_TRUE(tutorial.isNull() || tutorial->parentWidget() == nullptr);
}

TEST(TutorialFace, ReducedTransparencyDrawsBlackAtThreeQuartersWithoutBlur)
{
    VextilToolkitSettings::sharedInstance()->setReduceTransparency(true);
    VextilTutorialFace tutorial;
    EXPECT_EQ(tutorial.blurEffectView(), nullptr);
    EXPECT_DOUBLE_EQ(tutorial.alpha(), 0.75);
    VextilToolkitSettings::sharedInstance()->setReduceTransparency(false);
}

TEST(TutorialView, ClosesAndReportsExactlyOnceHoweverItsFadesEnd)
{
    // Pressed during the fade-in; pressed and then its fade's effect taken away; pressed twice.
    const std::pair<const char *, std::function<void(VextilTutorialFace &)>> endings[] = {
        {"pressed while fading in", [](VextilTutorialFace &t) { Q_EMIT t.nextButton()->pressed(); }},
        {"fade-out cut short", [](VextilTutorialFace &t) {
             Q_EMIT t.nextButton()->pressed();
             t.setGraphicsEffect(nullptr);
         }},
        {"pressed twice", [](VextilTutorialFace &t) {
             Q_EMIT t.nextButton()->pressed();
             Q_EMIT t.nextButton()->pressed();
         }},
    };
    for (const auto &[name, end] : endings) {
        SCOPED_TRACE(name);
        QWidget screen;
        screen.resize(390, 844);
        screen.show();
        QPointer<VextilTutorialFace> tutorial = new VextilTutorialFace(&screen);
        int reported = 0;
        tutorial->setCompletionHandler([&] { ++reported; });
        tutorial->setGeometry(screen.rect());
        tutorial->fadeIn(100);
        QTest::qWait(20);
        end(*tutorial);
        EXPECT_TRUE(QTest::qWaitFor([&] { return tutorial.isNull(); }, 2000)) << "the pop-up is gone";
        EXPECT_EQ(reported, 1);
        EXPECT_TRUE(screen.findChildren<VextilTutorialFace *>().isEmpty());
    }
}

}  // namespace
