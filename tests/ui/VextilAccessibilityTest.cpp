#include <VextilToolkit/VextilConfirmController.h>
#include <VextilToolkit/VextilFaceCameraViewController.h>
#include <VextilToolkit/VextilRepository.h>

#include "capture/VextilFaceCameraView.h"
#include "capture/VextilFaceProgressBar.h"
#include "capture/VextilFaceProgressBoxView.h"
#include "ManualSource.h"
#include "review/VextilConfirmView.h"
#include "tutorial/VextilTutorialFace.h"

#include <QAccessible>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

namespace {

// Every visible control and picture on a screen, as assistive technology walks it.
struct Walk {
    QMap<QAccessible::Role, QStringList> named;  // role -> accessible names
    QStringList unnamed;                           // controls and pictures without a name

    explicit Walk(QWidget *screen) { visit(QAccessible::queryAccessibleInterface(screen)); }

    void visit(QAccessibleInterface *node)
    {
        if (!node || node->state().invisible)
            return;
        const QAccessible::Role role = node->role();
        if (role == QAccessible::Button || role == QAccessible::Graphic || role == QAccessible::ProgressBar) {
            const QString name = node->text(QAccessible::Name);
            (name.isEmpty() ? unnamed : named[role]).append(name.isEmpty() ? QString::number(role) : name);
        }
        for (int i = 0; i < node->childCount(); ++i)
            visit(node->child(i));
    }
};

class Accessibility : public ::testing::Test {
protected:
    void SetUp() override
    {
        host.resize(390, 844);
        host.show();
    }

    QWidget host;
};

TEST_F(Accessibility, TheCameraScreenNamesItsPartsAndItsProgressBarHasAValue)
{
    auto *camera = new VextilFaceCameraViewController;
    camera->setPresentTutorial(false);
    camera->setFrameSource(std::make_unique<ManualSource>());
    VextilBaseViewController::present(&host, camera, false);
    ASSERT_TRUE(QTest::qWaitFor([&] { return camera->isVisible(); }, 2000));
    QTest::qWait(50);

    const Walk walk(camera);
    EXPECT_TRUE(walk.unnamed.isEmpty()) << walk.unnamed.join(", ").toStdString();
    EXPECT_TRUE(walk.named[QAccessible::Button].contains("Back"));
    EXPECT_TRUE(walk.named[QAccessible::Button].contains("Help"));
    EXPECT_TRUE(walk.named[QAccessible::Graphic].contains("Face frame"));
    EXPECT_TRUE(walk.named[QAccessible::Graphic].contains("Vextil"));
    ASSERT_EQ(walk.named[QAccessible::ProgressBar], QStringList{"Progress"});

    // The announcements themselves go out through QAccessible::updateAccessibility, which the
    // offscreen platform (no accessibility backend) drops: what a reader would be told is checked.
    camera->faceProgressBoxView()->updateInstructionsLabelWithText(QStringLiteral("Checking your face"));
    camera->faceProgressBoxView()->updateProgress(0.4);
    camera->faceCameraView()->isPopupHidden(false);
    EXPECT_EQ(QAccessible::queryAccessibleInterface(camera->faceProgressBoxView()->instructionsLabel())->text(QAccessible::Name),
              "Checking your face");
    EXPECT_EQ(QAccessible::queryAccessibleInterface(camera->faceCameraView()->popupLabel())->text(QAccessible::Name), "SMILE!");
    auto *progress = QAccessible::queryAccessibleInterface(camera->faceProgressBoxView()->faceProgressBar());
    ASSERT_NE(progress->valueInterface(), nullptr);
    EXPECT_EQ(progress->valueInterface()->currentValue().toDouble(), 0.4);
    delete camera;
}

TEST_F(Accessibility, TheTutorialAndTheReviewAreNamedAndAnsweredFromTheKeyboard)
{
    QPointer<VextilTutorialFace> tutorial = new VextilTutorialFace(&host);
    tutorial->setGeometry(host.rect());
    bool closed = false;
    tutorial->setCompletionHandler([&] { closed = true; });
    tutorial->fadeIn(0);
    QTest::qWait(50);
    const Walk tips(tutorial);
    EXPECT_TRUE(tips.unnamed.isEmpty()) << tips.unnamed.join(", ").toStdString();
    EXPECT_EQ(tips.named[QAccessible::Graphic].size(), 4) << "each tip's picture carries its text";
    EXPECT_TRUE(tips.named[QAccessible::Button].contains("OK, I got it"));
    EXPECT_TRUE(tutorial->nextButton()->hasFocus());
    QTest::keyClick(tutorial->nextButton(), Qt::Key_Space);
    EXPECT_TRUE(QTest::qWaitFor([&] { return closed; }, 2000)) << "the space bar answers it";

    auto *store = VextilRepository::sharedInstance();
    QImage photo(120, 160, QImage::Format_RGB32);
    photo.fill(Qt::darkCyan);
    store->setFaceImages(std::make_shared<QList<QImage>>(5, photo));
    store->setFaceSmileImages(std::make_shared<QList<QImage>>(2, photo));
    auto *review = new VextilConfirmController;
    review->setModel(new VextilConfirmModel);
    VextilBaseViewController::present(&host, review, false);
    ASSERT_TRUE(QTest::qWaitFor([&] { return review->confirmView()->acceptButton()->hasFocus(); }, 2000));
    const Walk screen(review);
    EXPECT_TRUE(screen.unnamed.isEmpty()) << screen.unnamed.join(", ").toStdString();
    EXPECT_TRUE(screen.named[QAccessible::Graphic].contains("Captured photo"));
    EXPECT_TRUE(screen.named[QAccessible::Button].contains("Yes, send"));
    EXPECT_TRUE(screen.named[QAccessible::Button].contains("No, take another photo."));

    QSignalSpy accept(review->confirmView()->acceptButton(), &QAbstractButton::pressed);
    QSignalSpy retake(review->confirmView()->cancelButton(), &QAbstractButton::pressed);
    EXPECT_FALSE(review->confirmView()->acceptButton()->showsFocusRing()) << "no ring until the keyboard is used";
    QTest::keyClick(review->confirmView()->acceptButton(), Qt::Key_Tab);
    EXPECT_TRUE(review->confirmView()->cancelButton()->hasFocus()) << "Tab reaches the other answer";
    EXPECT_TRUE(review->confirmView()->cancelButton()->showsFocusRing()) << "and shows where it is";
    QTest::keyClick(review->confirmView()->cancelButton(), Qt::Key_Space);
    EXPECT_EQ(retake.count(), 1);
    EXPECT_EQ(accept.count(), 0);
    QTest::qWait(100);
    delete review;
}

}  // namespace
