#include <VextilToolkit/VextilCameraFrame.h>

#include "camera/VextilCameraFormatChoice.h"
#include "camera/VextilUprightFrame.h"

#include <QPainter>

#include <gtest/gtest.h>

#include <atomic>

namespace {

// A 60x40 picture whose quarters have colours of their own, so that any turn or crop shows.
QImage quarters(QSize size)
{
    QImage image(size, QImage::Format_RGB32);
    QPainter painter(&image);
    const int w = size.width() / 2, h = size.height() / 2;
    painter.fillRect(0, 0, w, h, Qt::red);
    painter.fillRect(w, 0, w, h, Qt::green);
    painter.fillRect(0, h, w, h, Qt::blue);
    painter.fillRect(w, h, w, h, Qt::yellow);
    return image;
}

QRgb corner(const QImage &image, int x, int y) { return image.pixel(x ? image.width() - 1 : 0, y ? image.height() - 1 : 0); }

TEST(UprightFrame, EachQuarterTurnPutsTheSceneUprightAndCropsToTheView)
{
    // The scene, upright: red top left, green top right, blue bottom left, yellow bottom right.
    const QImage scene = quarters(QSize(40, 60));
    for (int rotation : {0, 90, 180, 270}) {
        SCOPED_TRACE(rotation);
        // What a sensor turned that way stores: the scene turned back.
        const QImage stored = scene.transformed(QTransform().rotate(-rotation));
        const VextilCameraFrame frame(stored, rotation);
        const QImage whole = VextilUprightFrame::image(frame, QSizeF());
        ASSERT_EQ(whole.size(), scene.size());
        EXPECT_EQ(corner(whole, 0, 0), qRgb(255, 0, 0));
        EXPECT_EQ(corner(whole, 1, 0), qRgb(0, 255, 0));
        EXPECT_EQ(corner(whole, 0, 1), qRgb(0, 0, 255));
        EXPECT_EQ(corner(whole, 1, 1), qRgb(255, 255, 0));

        // A view wider than the scene shows its middle band; the band is what comes back.
        const QImage band = VextilUprightFrame::image(frame, QSizeF(80, 40));
        ASSERT_EQ(band.size(), QSize(40, 20));
        EXPECT_EQ(band, scene.copy(0, 20, 40, 20));
    }
}

TEST(UprightFrame, AKeptPictureIsTheSamePictureInThreeBytesAPixel)
{
    const QImage scene = quarters(QSize(40, 60));
    for (int rotation : {0, 90}) {
        SCOPED_TRACE(rotation);
        const VextilCameraFrame frame(scene.transformed(QTransform().rotate(-rotation)), rotation);
        const QImage kept = VextilUprightFrame::kept(frame, QSizeF(80, 40));
        EXPECT_EQ(kept.format(), QImage::Format_RGB888);
        EXPECT_LE(kept.sizeInBytes(), qsizetype(kept.height()) * ((kept.width() * 3 + 3) & ~3));
        EXPECT_EQ(kept.convertToFormat(QImage::Format_RGB32), VextilUprightFrame::image(frame, QSizeF(80, 40)));
    }
}

TEST(UprightFrame, AKeptPictureIsMadeFromBandsOfTheFrameNeverWhole)
{
    // At the moment a picture is kept, a four-byte copy of it would cost a third more than the
    // picture: a frame that converts regions is asked for a few rows at a time.
    const QImage scene = quarters(QSize(720, 1280));
    const QSizeF phone(390, 741);
    std::atomic<int> largestRows{0};
    const VextilCameraFrame frame(
        scene.size(), [&] { return scene; },
        [&](QRect region, QSize size) {
            largestRows = std::max(largestRows.load(), region.height());
            return scene.copy(region).scaled(size);
        });
    const QImage kept = VextilUprightFrame::kept(frame, phone);
    EXPECT_EQ(kept.format(), QImage::Format_RGB888);
    EXPECT_EQ(kept.convertToFormat(QImage::Format_RGB32), VextilUprightFrame::image(VextilCameraFrame(scene), phone));
    EXPECT_GT(largestRows, 0);
    EXPECT_LE(largestRows, 64);

    // A source that gives even rows only (as YUV with 2x2 chroma does), and an odd number of rows
    // in view: the picture is made whole, as that source makes it.
    const VextilCameraFrame evenRows(
        scene.size(), [&] { return scene; },
        [&](QRect region, QSize size) { return scene.copy(region).scaled(size.width(), size.height() & ~1); });
    const QSizeF shortView(390, 618);
    ASSERT_EQ(VextilUprightFrame::visibleRegion(scene.size(), shortView).height() % 2, 1);
    const QImage whole = VextilUprightFrame::image(evenRows, shortView);
    EXPECT_EQ(VextilUprightFrame::kept(evenRows, shortView).convertToFormat(QImage::Format_RGB32), whole);
}

TEST(UprightFrame, TheVisibleRegionIsTheMiddleAtTheViewsAspect)
{
    EXPECT_EQ(VextilUprightFrame::visibleRegion(QSize(1280, 720), QSizeF(390, 618)), QRect(413, 0, 454, 720));
    EXPECT_EQ(VextilUprightFrame::visibleRegion(QSize(720, 1280), QSizeF(390, 618)), QRect(0, 69, 720, 1141));
    EXPECT_EQ(VextilUprightFrame::visibleRegion(QSize(720, 1280), QSizeF(0, 0)), QRect(0, 0, 720, 1280));
}

TEST(CameraFrame, PixelsAreConvertedOnceAndOnlyWhenAskedFor)
{
    std::atomic<int> conversions{0};
    const VextilCameraFrame frame(QSize(8, 4), [&] {
        ++conversions;
        return quarters(QSize(8, 4)).convertToFormat(QImage::Format_ARGB32);
    }, 450, true);
    EXPECT_EQ(conversions, 0);
    EXPECT_EQ(frame.size(), QSize(8, 4));
    EXPECT_EQ(frame.rotation(), 90) << "a turn is a quarter turn";
    EXPECT_TRUE(frame.isMirrored());
    const VextilCameraFrame copy = frame;
    EXPECT_EQ(copy.image().format(), QImage::Format_RGB32);
    EXPECT_EQ(frame.image().size(), QSize(8, 4));
    EXPECT_EQ(conversions, 1) << "copies share the conversion";
    EXPECT_TRUE(VextilCameraFrame(QImage()).isNull());
}

TEST(CameraFormatChoice, PrefersSmooth720pTo1080pOverTheLargestFrame)
{
    using F = VextilCameraFormatChoice::Format;
    const QSize uhd(3840, 2160), fhd(1920, 1080), hd(1280, 720), vga(640, 480);
    struct Case {
        const char *name;
        QList<F> offered;
        int chosen;
    };
    const Case cases[] = {
        {"a webcam's usual list", {{uhd, 30, false}, {fhd, 30, false}, {hd, 30, false}, {vga, 30, true}}, 1},
        {"1080p only at a crawl", {{uhd, 5, false}, {fhd, 5, false}, {hd, 30, false}}, 2},
        {"the same size twice: the faster", {{hd, 15, false}, {hd, 30, false}}, 1},
        {"same size and rate: read directly", {{hd, 30, false}, {hd, 30, true}}, 1},
        {"nothing in the range: the nearest", {{uhd, 30, false}, {vga, 30, false}}, 1},
        {"nothing smooth: the fastest", {{fhd, 5, false}, {vga, 10, false}}, 1},
        {"nothing at all", {}, -1},
    };
    for (const Case &c : cases)
        EXPECT_EQ(VextilCameraFormatChoice::choose(c.offered), c.chosen) << c.name;
}

}  // namespace
