#include <VextilToolkit/VextilConfirmController.h>
#include <VextilToolkit/VextilFaceCameraViewController.h>
#include <VextilToolkit/VextilRepository.h>

#include "widgets/capture/VextilFaceCameraView.h"
#include "widgets/capture/VextilFaceProgressBar.h"
#include "widgets/capture/VextilFaceProgressBoxView.h"
#include "ManualSource.h"
#include "widgets/review/VextilConfirmView.h"
#include "widgets/tutorial/VextilTutorialFace.h"
#include "widgets/ui/NavigationBarView.h"

#include <QAccessible>
#include <QApplication>
#include <QPushButton>
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

// A review screen, not yet shown, over a capture of plain images in the store.
VextilConfirmController *reviewOfACapture()
{
    auto *store = VextilRepository::sharedInstance();
    QImage photo(120, 160, QImage::Format_RGB32);
    photo.fill(Qt::darkCyan);
    store->setFaceImages(std::make_shared<QList<QImage>>(5, photo));
    store->setFaceSmileImages(std::make_shared<QList<QImage>>(2, photo));
    auto *review = new VextilConfirmController;
    review->setModel(new VextilConfirmModel);
    return review;
}

// Every accessible name on a screen, of any role.
QStringList allNames(QAccessibleInterface *node)
{
    QStringList names;
    if (!node || node->state().invisible)
        return names;
    if (const QString name = node->text(QAccessible::Name); !name.isEmpty())
        names.append(name);
    for (int i = 0; i < node->childCount(); ++i)
        names += allNames(node->child(i));
    return names;
}

// Events themselves go out only through a platform bridge, which the offscreen platform lacks:
// the real-stack test (tests/accessibility) listens to them; here, what they would carry.
TEST_F(Accessibility, TheCameraScreensStatusHoldsTheFocusAndSaysTheWholeState)
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
    EXPECT_TRUE(allNames(QAccessible::queryAccessibleInterface(camera)).contains("Camera preview"));
    EXPECT_EQ(QAccessible::queryAccessibleInterface(camera)->text(QAccessible::Name), "Register selfie");

    // The status line has the focus, and its name tells the whole state as it changes.
    VextilFaceProgressBoxView *box = camera->faceProgressBoxView();
    QWidget *status = box->statusView();
    ASSERT_TRUE(status->hasFocus()) << "screen readers speak the focused object's changes";
    // A change is said once all its parts have landed: one sentence, not one per part.
    const auto said = [status] {
        QTest::qWait(VextilFaceProgressBoxView::kStatusSettlesMs + 30);
        return QAccessible::queryAccessibleInterface(status)->text(QAccessible::Name);
    };
    box->updateInstructionsLabelWithText(QStringLiteral("Checking your face"));
    box->updateProgress(0.4);
    EXPECT_EQ(QAccessible::queryAccessibleInterface(status)->text(QAccessible::Name), "Looking for face")
        << "not yet: the rest of the change may follow";
    EXPECT_EQ(said(), "Checking your face, photo 2 of 5");
    camera->isPopupViewHidden(false);  // as the model asks for the smile
    EXPECT_EQ(said(), "SMILE!");
    camera->isPopupViewHidden(true);
    box->isProgressBarHidden(true);
    EXPECT_EQ(said(), "Checking your face") << "no progress while the bar is hidden";

    // The progress bar: its fill as a description, and no actions to offer.
    auto *progress = QAccessible::queryAccessibleInterface(box->faceProgressBar());
    EXPECT_EQ(progress->valueInterface(), nullptr) << "a value would bring increase and decrease actions";
    EXPECT_TRUE(!progress->actionInterface() || progress->actionInterface()->actionNames().isEmpty());
    EXPECT_EQ(progress->text(QAccessible::Description), "40%");
    delete camera;
}

TEST_F(Accessibility, TheTutorialAndTheReviewAreNamedReadOnceAndAnsweredFromTheKeyboard)
{
    QPointer<VextilTutorialFace> tutorial = new VextilTutorialFace(&host);
    tutorial->setGeometry(host.rect());
    bool closed = false;
    tutorial->setCompletionHandler([&] { closed = true; });
    tutorial->fadeIn(0);
    QTest::qWait(50);
    const Walk tips(tutorial);
    EXPECT_TRUE(tips.unnamed.isEmpty()) << tips.unnamed.join(", ").toStdString();
    EXPECT_TRUE(tips.named[QAccessible::Button].contains("OK, I got it"));
    const QStringList names = allNames(QAccessible::queryAccessibleInterface(tutorial));
    EXPECT_EQ(names.first(), "Tips");
    for (const char *tip : {"Smile to save the photo", "The photo is taken automatically", "Remove any glasses and hat"})
        EXPECT_EQ(names.count(QString::fromUtf8(tip)), 1) << tip << " is read once";
    EXPECT_TRUE(tutorial->nextButton()->hasFocus());
    EXPECT_TRUE(tutorial->nextButton()->showsFocusRing()) << "the focus shows where it is from the start";
    QTest::keyClick(tutorial->nextButton(), Qt::Key_Space);
    EXPECT_TRUE(QTest::qWaitFor([&] { return closed; }, 2000)) << "the space bar answers it";

    auto *review = reviewOfACapture();
    VextilBaseViewController::present(&host, review, false);
    ASSERT_TRUE(QTest::qWaitFor([&] { return review->confirmView()->acceptButton()->hasFocus(); }, 2000));
    const Walk screen(review);
    EXPECT_TRUE(screen.unnamed.isEmpty()) << screen.unnamed.join(", ").toStdString();
    EXPECT_TRUE(screen.named[QAccessible::Graphic].contains("Captured photo"));
    EXPECT_TRUE(screen.named[QAccessible::Button].contains("Yes, send"));
    EXPECT_TRUE(screen.named[QAccessible::Button].contains("No, take another photo."));
    EXPECT_EQ(QAccessible::queryAccessibleInterface(review)->text(QAccessible::Name), "Send selfie");

    QSignalSpy accept(review->confirmView()->acceptButton(), &QAbstractButton::pressed);
    QSignalSpy retake(review->confirmView()->cancelButton(), &QAbstractButton::pressed);
    EXPECT_TRUE(review->confirmView()->acceptButton()->showsFocusRing()) << "a ring from the start";
    QTest::keyClick(review->confirmView()->acceptButton(), Qt::Key_Tab);
    EXPECT_TRUE(review->confirmView()->cancelButton()->hasFocus()) << "Tab reaches the other answer";
    EXPECT_TRUE(review->confirmView()->cancelButton()->showsFocusRing()) << "and shows where it is";
    EXPECT_FALSE(review->confirmView()->acceptButton()->showsFocusRing());
    QTest::keyClick(review->confirmView()->cancelButton(), Qt::Key_Space);
    EXPECT_EQ(retake.count(), 1);
    EXPECT_EQ(accept.count(), 0);
    QTest::qWait(100);
    delete review;
}

// Focus, step by step, in a host window with a button of its own: the keyboard stays in the
// top-most screen (tutorial, camera screen, review) and comes back to the host's button at the end.
TEST_F(Accessibility, TheKeyboardStaysInTheTopScreenAndReturnsToTheHostAtTheEnd)
{
    auto *firstButton = new QPushButton(QStringLiteral("Settings"), &host);  // first in the host's tab order
    firstButton->setGeometry(10, 60, 200, 40);
    firstButton->show();
    auto *hostButton = new QPushButton(QStringLiteral("Take selfie"), &host);
    hostButton->setGeometry(10, 10, 200, 40);
    hostButton->show();
    hostButton->setFocus();
    ASSERT_TRUE(QTest::qWaitFor([&] { return hostButton->hasFocus(); }, 1000));
    QSignalSpy hostPressed(hostButton, &QAbstractButton::pressed);

    auto *camera = new VextilFaceCameraViewController;  // with the tutorial, as by default
    camera->setFrameSource(std::make_unique<ManualSource>());
    VextilBaseViewController::present(&host, camera, false);
    ASSERT_TRUE(QTest::qWaitFor([&] { return camera->isPresentingTutorial() && QApplication::focusWidget(); }, 2000));
    auto *tutorial = camera->findChild<VextilTutorialFace *>();
    ASSERT_NE(tutorial, nullptr);
    ASSERT_TRUE(QTest::qWaitFor([&] { return tutorial->nextButton()->hasFocus(); }, 2000));
    for (int i = 0; i < 3; ++i) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        EXPECT_EQ(QApplication::focusWidget(), tutorial->nextButton()) << "the tutorial's one button, nothing under it";
    }
    camera->navigationView()->backButton()->setFocus();  // as a stray click or a reader's focus action would
    EXPECT_EQ(QApplication::focusWidget(), tutorial->nextButton()) << "a covered control takes no focus";
    QTest::keyClick(tutorial->nextButton(), Qt::Key_Space);
    QWidget *status = camera->faceProgressBoxView()->statusView();
    ASSERT_TRUE(QTest::qWaitFor([&] { return status->hasFocus(); }, 2000)) << "the status takes the focus back";

    // The camera screen: status, Back, Help, round again, and backwards.
    QList<QWidget *> visited;
    for (int i = 0; i < 3; ++i) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        visited.append(QApplication::focusWidget());
    }
    EXPECT_EQ(visited, (QList<QWidget *>{camera->navigationView()->backButton(), camera->navigationView()->helpButton(), status}));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Backtab);
    EXPECT_EQ(QApplication::focusWidget(), camera->navigationView()->helpButton());

    // The review over it: its own three buttons only.
    auto *review = reviewOfACapture();
    camera->presentViewController(review, false);
    ASSERT_TRUE(QTest::qWaitFor([&] { return review->confirmView() && review->confirmView()->acceptButton()->hasFocus(); }, 2000));
    QSet<QWidget *> reached;
    for (int i = 0; i < 7; ++i) {
        QTest::keyClick(QApplication::focusWidget(), i % 2 ? Qt::Key_Backtab : Qt::Key_Tab);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        reached.insert(QApplication::focusWidget());
        EXPECT_TRUE(review->isAncestorOf(QApplication::focusWidget())) << "never a covered control or the host's";
    }
    EXPECT_EQ(reached.size(), 3) << "Back, Yes and No";
    hostButton->setFocus();
    EXPECT_TRUE(review->isAncestorOf(QApplication::focusWidget())) << "the host's window takes no focus";
    EXPECT_EQ(hostPressed.count(), 0);

    // The flow ends: the focus is where the host had it.
    bool gone = false;
    camera->dismissViewControllerAnimated(false, [&] { gone = true; });  // the review with it
    ASSERT_TRUE(QTest::qWaitFor([&] { return gone; }, 2000));
    camera->dismissViewControllerAnimated(false);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !camera->isVisible(); }, 2000));
    QTest::qWait(20);
    EXPECT_TRUE(hostButton->hasFocus()) << "the focus returns to where the host had it";
    delete review;
    delete camera;
}

}  // namespace
