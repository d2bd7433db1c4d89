// The live camera path (QCamera, capture session, video sink) on the GStreamer fake camera.
#include <VextilToolkit/VextilFrameSource.h>

#include "FakeCamera.h"

#include <QTest>

#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>

#include <gtest/gtest.h>

#include <atomic>
#include <mutex>

namespace {

constexpr int kWidth = 640, kHeight = 480;

// The photo as the fake camera films it: scaled to cover the frame, cropped in the middle.
cv::Mat filmed(const QString &photo)
{
    const cv::Mat picture = cv::imread(photo.toStdString());
    const double scale = std::max(double(kWidth) / picture.cols, double(kHeight) / picture.rows);
    cv::Mat scaled;
    cv::resize(picture, scaled,
               cv::Size(std::max(kWidth, int(std::lround(picture.cols * scale))),
                        std::max(kHeight, int(std::lround(picture.rows * scale)))),
               0, 0, cv::INTER_AREA);
    return scaled(cv::Rect((scaled.cols - kWidth) / 2, (scaled.rows - kHeight) / 2, kWidth, kHeight)).clone();
}

void expectNear(const QImage &image, const cv::Mat &expectedRgb, const char *what)
{
    ASSERT_EQ(image.size(), QSize(expectedRgb.cols, expectedRgb.rows)) << what;
    const QImage rgb = image.convertToFormat(QImage::Format_RGB888);
    const cv::Mat got(rgb.height(), rgb.width(), CV_8UC3, const_cast<uchar *>(rgb.constBits()), rgb.bytesPerLine());
    cv::Mat difference;
    cv::absdiff(got, expectedRgb, difference);
    const cv::Scalar mean = cv::mean(difference);
    for (int channel = 0; channel < 3; ++channel)
        EXPECT_LT(mean[channel], 8.0) << what << ", channel " << channel << ": colours or layout wrong";
}

class LiveCameraFormat : public ::testing::TestWithParam<const char *> {};

TEST_P(LiveCameraFormat, FramesConvertToWhatTheCameraFilmsAndStopMeansStopped)
{
    const QString photo = QStringLiteral(VEXTIL_TEST_DATA_DIR "/faces/face-3-0-yes.jpg");  // warm skin, blue light
    FakeCamera{photo, GetParam(), "640x480", {}}.install();
    std::unique_ptr<VextilFrameSource> camera = VextilFrameSource::createDefault();
    ASSERT_TRUE(camera->isAvailable());
    std::atomic<int> frames{0};
    std::mutex mutex;
    QImage image, small;
    // The middle half of the frame at half size, made from the planes before the whole image.
    const QRect middle(kWidth / 4, 0, kWidth / 2, kHeight);
    camera->setFrameHandler([&](const VextilCameraFrame &frame) {
        if (++frames == 3) {
            const std::lock_guard lock(mutex);
            small = frame.scaledRegion(middle, middle.size() / 2);
            image = frame.image();
        }
    });
    camera->start();
    ASSERT_TRUE(QTest::qWaitFor([&] { return frames >= 5; }, 10000)) << "no frames from the camera";
    EXPECT_EQ(FakeCamera::state(), "open");
    {
        const std::lock_guard lock(mutex);
        ASSERT_EQ(image.size(), QSize(kWidth, kHeight));
        cv::Mat expected, expectedSmall;
        cv::cvtColor(filmed(photo), expected, cv::COLOR_BGR2RGB);
        cv::resize(expected(cv::Rect(middle.x(), middle.y(), middle.width(), middle.height())), expectedSmall,
                   cv::Size(middle.width() / 2, middle.height() / 2), 0, 0, cv::INTER_AREA);
        expectNear(image, expected, "whole frame");
        expectNear(small, expectedSmall, "small copy of a region");
    }

    camera->stop();
    EXPECT_EQ(FakeCamera::state(), "closed") << "the camera is let go, not only told to stop";
    const int stoppedAt = frames;
    QTest::qWait(1000);
    EXPECT_EQ(frames, stoppedAt) << "frames after stop";
    camera->start();
    EXPECT_TRUE(QTest::qWaitFor([&] { return frames >= stoppedAt + 5; }, 10000)) << "no frames after starting again";
}

// Qt 6.4 lists each GStreamer camera twice, under two ids.
TEST(LiveCameraChoice, EachCameraIsListedOnceAndTheHostsChoiceHoldsWhileItIsThere)
{
    FakeCamera{QStringLiteral(VEXTIL_SELFIE_CLIP), "YUY2", "640x480", {}, "Laptop camera,Desk camera"}.install();
    ASSERT_TRUE(QTest::qWaitFor([] { return VextilFrameSource::cameraNames().size() == 2; }, 5000));
    QTest::qWait(500);  // the second listing of each
    EXPECT_EQ(VextilFrameSource::cameraNames(), (QStringList{"Laptop camera", "Desk camera"}));
    EXPECT_EQ(VextilFrameSource::createDefault(QStringLiteral("Desk camera"))->description(), "camera: Desk camera");
    const QString chosen = VextilFrameSource::createDefault()->description();
    EXPECT_EQ(VextilFrameSource::createDefault(QStringLiteral("Unplugged camera"))->description(), chosen);
    EXPECT_TRUE(chosen == "camera: Laptop camera" || chosen == "camera: Desk camera") << qPrintable(chosen);
}

INSTANTIATE_TEST_SUITE_P(Webcams, LiveCameraFormat,
                         ::testing::Values("YUY2", "UYVY", "NV12", "NV21", "I420", "YV12", "Y42B", "JPEG"));

}  // namespace
