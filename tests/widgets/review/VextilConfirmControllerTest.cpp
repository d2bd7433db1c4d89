#include <VextilToolkit/VextilConfirmController.h>
#include <VextilToolkit/VextilRepository.h>

#include "widgets/review/VextilConfirmView.h"
#include "widgets/ui/NavigationBarView.h"
#include "Presses.h"
#include "TestImages.h"

#include <QElapsedTimer>
#include <QPainter>
#include <QTest>

#include <gtest/gtest.h>

#include <thread>

namespace {

// Records what the model pushes.
class Answers : public QObject, public VextilConfirmControllerDelegate {
public:
    void didFinishedConfirmWithSuccess(bool success) override { answers.append(success); }
    QList<bool> answers;
};

TEST(ConfirmView, PlaysTheImagesInOrderARoundASecondInABorderThatFollowsTheWindow)
{
    VextilConfirmView view;
    view.resize(390, 760);
    view.show();
    const auto border = view.border();
    ASSERT_TRUE(border.has_value());
    EXPECT_EQ(*border, QRectF(view.selectImageView()->geometry()).adjusted(-5, -5, 5, 5));
    // A window resized while the review shows: the border surrounds the photo again, drawn.
    for (const QSize size : {QSize(600, 900), QSize(1280, 800), QSize(844, 390)}) {
        view.resize(size);
        const QRectF around = QRectF(view.selectImageView()->geometry()).adjusted(-5, -5, 5, 5);
        EXPECT_EQ(view.border(), around) << "the border stayed behind at " << size.width() << "x" << size.height();
        const QImage painted = view.grab().toImage();
        EXPECT_NE(painted.pixelColor(around.topLeft().toPoint() + QPoint(10, 0)), painted.pixelColor(5, 5))
            << "no border painted along the photo's top edge";
    }
    view.resize(390, 760);
    EXPECT_EQ(view.cancelButton()->imageEdgeInsets(), QMarginsF(0, 0, 15, 0));

    // What is painted goes through the seven images in order, the whole round in a second: a
    // busy machine may stretch it, nothing may shorten it.
    auto seven = std::make_shared<QList<QImage>>();
    for (int i = 0; i < 7; ++i)
        seven->append(solid(qRgb(30 * i, 255 - 30 * i, 128)));
    view.setFaceImages(seven);
    const auto painted = [&] { return seven->indexOf(solid(view.selectImageView()->grab().toImage().pixel(60, 80))); };
    const auto next = [&](int from) { return QTest::qWaitFor([&] { return painted() != from; }, 3000) ? painted() : -1; };
    int shown = next(painted());
    QElapsedTimer round;
    round.start();
    for (int step = 1; step <= 7; ++step) {
        const int now = next(shown);
        ASSERT_EQ(now, (shown + 1) % 7) << "the painted photo left out or repeated an image";
        shown = now;
    }
    EXPECT_GE(round.elapsed(), 800) << "faster than a round a second";
    EXPECT_LE(round.elapsed(), 3000) << "far slower than a round a second";
}

TEST(ConfirmController, AcceptAndRetakeReportOnceAfterTheScreenIsGone)
{
    QWidget host;
    host.resize(390, 844);
    host.show();
    auto *store = VextilRepository::sharedInstance();
    Answers answers;
    for (bool accept : {true, false}) {
        store->setFaceImages(images(5, qRgb(1, 1, 1)));
        store->setFaceSmileImages(images(2, qRgb(2, 2, 2)));
        VextilConfirmController review;
        review.setDelegate(&answers);
        VextilBaseViewController::present(&host, &review, false);
        ASSERT_TRUE(QTest::qWaitFor([&] { return review.confirmView() && review.confirmView()->animationImages().size() == 7; }, 2000));
        // Accepting with a finger on a touch screen, going back with the mouse.
        if (accept)
            presses::touchWhereDrawn(review.confirmView()->acceptButton());
        else
            presses::pressWhereDrawn(review.navigationBar()->backButton());
        ASSERT_TRUE(QTest::qWaitFor([&] { return !answers.answers.isEmpty(); }, 2000));
        EXPECT_FALSE(review.isVisible());
        EXPECT_EQ(answers.answers, QList<bool>{accept});
        EXPECT_EQ(store->getFaceImages() != nullptr, accept) << "a retake drops the capture";
        answers.answers.clear();
    }
}

// A portrait capture in blue with a red square in each corner, larger than the rounding.
QImage cornerMarked()
{
    QImage image(270, 428, QImage::Format_RGB32);  // a phone view's proportions
    image.fill(qRgb(0, 0, 255));
    QPainter painter(&image);
    for (const QPoint corner : {QPoint(0, 0), QPoint(210, 0), QPoint(0, 368), QPoint(210, 368)})
        painter.fillRect(QRect(corner, QSize(60, 60)), Qt::red);
    return image;
}

// The review shows the whole capture, never cropped to its frame's shape, and lays itself out
// in a portrait region: the same screen in a phone, a desktop window and a phone on its side.
TEST(ConfirmController, ShowsTheWholeCaptureInAPortraitRegionOfAnyWindow)
{
    auto *store = VextilRepository::sharedInstance();
    for (const QSize window : {QSize(390, 844), QSize(1280, 800), QSize(844, 390)}) {
        SCOPED_TRACE(QStringLiteral("%1x%2").arg(window.width()).arg(window.height()).toStdString());
        store->setFaceImages(std::make_shared<QList<QImage>>(5, cornerMarked()));
        store->setFaceSmileImages(std::make_shared<QList<QImage>>(2, cornerMarked()));
        QWidget host;
        host.resize(window);
        host.show();
        VextilConfirmController review;
        VextilBaseViewController::present(&host, &review, false);
        ASSERT_TRUE(QTest::qWaitFor([&] { return review.confirmView() && !review.confirmView()->currentImage().isNull(); }, 2000));
        QTest::qWait(20);
        VextilConfirmView *view = review.confirmView();
        const QRect placed(view->mapTo(&host, QPoint(0, 0)), view->size());
        EXPECT_LE(double(placed.width()) / (placed.bottom() + 1), 0.75 + 0.01) << "a portrait region";
        EXPECT_NEAR(placed.center().x(), window.width() / 2.0, 1.5);
        for (QWidget *part : QList<QWidget *>{view->selectImageView(), view->acceptButton(), view->cancelButton()})
            EXPECT_TRUE(view->rect().contains(part->geometry())) << "inside the screen";

        // Red and blue pixels on screen: the picture's extent, and whether each corner shows.
        const QImage shot = view->selectImageView()->grab().toImage();
        QRect picture;
        int corners[2][2] = {};
        for (int y = 0; y < shot.height(); ++y)
            for (int x = 0; x < shot.width(); ++x) {
                const QRgb p = shot.pixel(x, y);
                const bool red = qRed(p) > 200 && qBlue(p) < 60, blue = qBlue(p) > 200 && qRed(p) < 60;
                if (red || blue)
                    picture |= QRect(x, y, 1, 1);
                if (red)
                    ++corners[y * 2 / shot.height()][x * 2 / shot.width()];
            }
        ASSERT_FALSE(picture.isEmpty());
        EXPECT_NEAR(double(picture.width()) / picture.height(), 270.0 / 428, 0.02) << "the capture's own shape";
        for (const auto &row : corners)
            for (int count : row)
                EXPECT_GT(count, picture.width() * picture.height() / 100) << "a corner of the capture is cut off";
        review.dismissViewControllerAnimated(false);
        QTest::qWait(20);
    }
}

}  // namespace
