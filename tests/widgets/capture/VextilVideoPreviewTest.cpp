// What moves on the camera screen, as the user sees it: the preview follows the camera and rests
// while the screen is hidden, shows the camera's picture mirrored, and the progress bar's fill
// travels instead of jumping.
#include <VextilToolkit/VextilFaceCameraViewController.h>
#include <VextilToolkit/VextilToolkitSettings.h>

#include "CameraPicture.h"
#include "ManualSource.h"
#include "widgets/capture/VextilFaceCameraView.h"
#include "widgets/capture/VextilFaceProgressBar.h"
#include "widgets/capture/VextilFaceProgressBoxView.h"
#include "widgets/capture/VextilVideoPreview.h"

#include <QElapsedTimer>
#include <QTest>

#include <atomic>

#include <gtest/gtest.h>

namespace {

// Mean colour of a part of a picture given in shares of its width and height.
QColor meanColour(const QImage &image, QRectF share)
{
    const QRect area(int(share.x() * image.width()), int(share.y() * image.height()),
                     std::max(1, int(share.width() * image.width())), std::max(1, int(share.height() * image.height())));
    qint64 r = 0, g = 0, b = 0, n = 0;
    for (int y = area.top(); y <= area.bottom(); ++y)
        for (int x = area.left(); x <= area.right(); ++x, ++n) {
            const QRgb pixel = image.pixel(x, y);
            r += qRed(pixel), g += qGreen(pixel), b += qBlue(pixel);
        }
    return n ? QColor(int(r / n), int(g / n), int(b / n)) : QColor();
}

// A camera picture whose left half is red and right half blue, as the camera films it.
QImage splitPicture()
{
    QImage picture(720, 1280, QImage::Format_RGB32);
    picture.fill(QColor(200, 30, 30));
    for (int y = 0; y < picture.height(); ++y)
        for (int x = picture.width() / 2; x < picture.width(); ++x)
            picture.setPixel(x, y, qRgb(30, 30, 200));
    return picture;
}

// A camera that films the pictures a test hands it while it runs, and nothing once stopped.
class FilmingCamera : public ManualSource {
public:
    void film(const QImage &picture)
    {
        if (m_running)
            push(VextilCameraFrame(picture));
    }
    void start() override { m_running = true; }
    void stop() override { m_running = false; }
    bool isRunning() const override { return m_running; }

private:
    std::atomic<bool> m_running{false};
};

struct CameraScreen {
    QWidget host;
    VextilFaceCameraViewController *controller = new VextilFaceCameraViewController;
    FilmingCamera *camera = nullptr;
    bool shown = false;

    CameraScreen()
    {
        host.resize(390, 844);
        host.show();
        auto source = std::make_unique<FilmingCamera>();
        camera = source.get();
        controller->setPresentTutorial(false);
        controller->setFrameSource(std::move(source));
        VextilBaseViewController::present(&host, controller, false);
        shown = QTest::qWaitFor([&] { return controller->isVisible(); }, 2000);
        QTest::qWait(50);
    }
    VextilVideoPreview *preview() const { return controller->faceCameraView()->videoPreviewLayer(); }
    // Films one picture and waits until the preview shows it.
    bool film(const QImage &picture)
    {
        const QImage before = preview()->frame();
        camera->film(picture);
        return QTest::qWaitFor([&] { return preview()->frame() != before; }, 2000);
    }
    QImage painted() const { return preview()->grab().toImage(); }
};

TEST(VideoPreview, FollowsTheCameraAndRestsWhileTheScreenIsHidden)
{
    CameraScreen screen;
    ASSERT_TRUE(screen.shown);
    ASSERT_TRUE(screen.film(cameraPicture(false)));
    const QImage neutral = screen.painted();
    ASSERT_TRUE(screen.film(cameraPicture(true)));
    const QImage smiling = screen.painted();
    EXPECT_NE(neutral, smiling) << "the painted preview stayed on its first picture";

    screen.host.hide();  // a minimised window: the camera screen rests
    QTest::qWait(100);
    EXPECT_FALSE(screen.camera->isRunning()) << "the camera films behind a hidden screen";
    screen.camera->film(cameraPicture(false));
    QTest::qWait(300);
    EXPECT_EQ(screen.painted(), smiling) << "the preview went on while the screen was hidden";
}

TEST(VideoPreview, ShowsTheCamerasPictureMirroredAsASelfieCameraDoes)
{
    ASSERT_TRUE(VextilToolkitSettings::sharedInstance()->mirrorsPreview());
    CameraScreen screen;
    ASSERT_TRUE(screen.shown);
    ASSERT_TRUE(screen.film(splitPicture()));
    const QImage painted = screen.painted();
    // The user's right hand (the picture's left, red) shows on the right, as in a mirror.
    const QColor left = meanColour(painted, QRectF(0.05, 0.3, 0.3, 0.4));
    const QColor right = meanColour(painted, QRectF(0.65, 0.3, 0.3, 0.4));
    EXPECT_GT(left.blue(), 150) << "left: " << left.name().toStdString();
    EXPECT_LT(left.red(), 80);
    EXPECT_GT(right.red(), 150) << "right: " << right.name().toStdString();
    EXPECT_LT(right.blue(), 80);
}

TEST(FaceProgressBar, ItsFillTravelsToANewValue)
{
    VextilFaceProgressBoxView box;
    box.resize(390, 150);
    box.show();
    VextilFaceProgressBar *bar = box.faceProgressBar();
    // Part-way through the 0.5-s animation; a busy machine that takes longer tries again.
    QImage painted;
    for (int attempt = 0; attempt < 3; ++attempt) {
        box.updateProgress(0.0);
        QTest::qWait(600);
        QElapsedTimer clock;
        clock.start();
        box.updateProgress(0.8);
        QTest::qWait(200);
        painted = bar->grab().toImage();
        if (clock.elapsed() < 400)
            break;
    }
    const QColor fill = VextilFaceProgressBar::fillColor();
    int filled = 0;
    for (int x = 0; x < painted.width(); ++x) {
        const QColor pixel(painted.pixel(x, painted.height() / 2));
        filled += std::abs(pixel.red() - fill.red()) + std::abs(pixel.green() - fill.green()) +
                              std::abs(pixel.blue() - fill.blue()) < 40 ? 1 : 0;
    }
    const double share = double(filled) / painted.width();
    EXPECT_GT(share, 0.05) << "the fill has not moved";
    EXPECT_LT(share, 0.75) << "the fill jumped to its end";
    EXPECT_TRUE(QTest::qWaitFor([&] { return bar->displayedStrokeEnd() == 0.8; }, 2000));
}

}  // namespace
