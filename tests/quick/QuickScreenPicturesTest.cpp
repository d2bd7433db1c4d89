// Every screen and state of the Qt Quick face, at two phone sizes, a desktop window and a phone
// on its side, in the default colours and a host's, compared with reviewed pictures; drawn by
// Qt Quick's software renderer.
#include <VextilToolkit/VextilCameraAuthorization.h>
#include <VextilToolkit/VextilFrameSource.h>
#include <VextilToolkit/VextilRepository.h>
#include <VextilToolkit/VextilToolkitSettings.h>

#include "CameraPicture.h"
#include "PictureCheck.h"
#include "EveryLook.h"
#include "StillCamera.h"
#include "capture/VextilCaptureSession.h"

#include <QDir>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QSettings>
#include <QTest>

#include <gtest/gtest.h>

#include <functional>

namespace {

// Slides, fades and the status's settling run out.
void settle()
{
    QTest::qWait(800);
}

// A host window of the given size with FaceCapture over it, a flow opened.
struct QuickHost {
    QQmlEngine engine;
    std::unique_ptr<QQuickWindow> window;
    QQuickItem *capture = nullptr;

    QuickHost(QSize size, bool tutorial)
    {
        QQmlComponent component(&engine);
        component.setData(QStringLiteral("import QtQuick\nimport VextilToolkit\n"
                                          "Window { width: %1; height: %2; color: \"white\"\n"
                                          "  FaceCapture { objectName: \"capture\"; presentTutorial: %3 } }")
                              .arg(size.width())
                              .arg(size.height())
                              .arg(tutorial ? "true" : "false")
                              .toUtf8(),
                          QUrl());
        window.reset(qobject_cast<QQuickWindow *>(component.create()));
        if (!window) {
            ADD_FAILURE() << component.errorString().toStdString();
            return;
        }
        window->show();
        capture = window->findChild<QQuickItem *>(QStringLiteral("capture"));
        QMetaObject::invokeMethod(capture, "requestFace");
        settle();
    }
    VextilCaptureSession *session() const { return window ? window->findChild<VextilCaptureSession *>() : nullptr; }
    QImage picture() const { return window ? window->grabWindow() : QImage(); }
};

class QuickScreenPictures : public ::testing::Test {
protected:
    void SetUp() override
    {
        usePictureFont();
        VextilToolkitSettings::sharedInstance()->setFrameSourceFactory([] { return std::make_unique<StillCamera>(); });
        VextilCameraAuthorization::setHooks([] { return VextilCameraAuthorization::Authorized; }, {}, {});
    }
    void TearDown() override
    {
        VextilToolkitSettings::sharedInstance()->setColorScheme(std::make_shared<VextilDefaultColorScheme>());
        VextilToolkitSettings::sharedInstance()->setFrameSourceFactory({});
        VextilCameraAuthorization::setHooks({}, {}, {});
    }

    void check(const QString &state, const std::function<QImage(QSize)> &render)
    {
        checkEveryLook(QStringLiteral("quick"), state, render);
    }

    // The camera screen showing `frame`, then whatever `state` puts on it through its session.
    static QImage cameraScreen(QSize size, const QImage &frame,
                               const std::function<void(VextilCaptureSession *)> &state = {})
    {
        QuickHost host(size, false);
        VextilCaptureSession *session = host.session();
        if (!session)
            return {};
        if (!frame.isNull())
            Q_EMIT session->frameReady(frame);
        if (state)
            state(session);
        settle();
        return host.picture();
    }
};

TEST_F(QuickScreenPictures, TheTutorialOverTheCameraScreen)
{
    check(QStringLiteral("tutorial"), [](QSize size) {
        QuickHost host(size, true);
        return host.picture();
    });
}

TEST_F(QuickScreenPictures, TheCameraScreenLookingForAFace)
{
    check(QStringLiteral("camera-looking"), [](QSize size) { return cameraScreen(size, cameraPicture()); });
}

TEST_F(QuickScreenPictures, TheCameraScreenCollectingWithTheFaceFound)
{
    check(QStringLiteral("camera-collecting"), [](QSize size) {
        return cameraScreen(size, cameraPicture(), [](VextilCaptureSession *session) {
            Q_EMIT session->maskStateChanged(true);
            Q_EMIT session->instructionChanged(QStringLiteral("Checking your face"));
            Q_EMIT session->progressChanged(0.6);
        });
    });
}

TEST_F(QuickScreenPictures, TheCameraScreenAskingForASmile)
{
    check(QStringLiteral("camera-smile"), [](QSize size) {
        return cameraScreen(size, cameraPicture(true), [](VextilCaptureSession *session) {
            Q_EMIT session->maskStateChanged(true);
            Q_EMIT session->smilePromptChanged(true);
            Q_EMIT session->instructionChanged(QStringLiteral("SMILE!"));
            Q_EMIT session->progressBarHiddenChanged(true);
        });
    });
}

TEST_F(QuickScreenPictures, TheCameraScreenNamingACameraFault)
{
    check(QStringLiteral("camera-fault"), [](QSize size) {
        return cameraScreen(size, QImage(), [](VextilCaptureSession *session) {
            Q_EMIT session->instructionChanged(QStringLiteral("No camera found"));
        });
    });
}

TEST_F(QuickScreenPictures, TheCameraScreenGuidingTheUser)
{
    check(QStringLiteral("camera-move-closer"), [](QSize size) {
        return cameraScreen(size, cameraPicture().scaled(360, 640).copy(-180, -320, 720, 1280),
                            [](VextilCaptureSession *session) {
                                Q_EMIT session->instructionChanged(QStringLiteral("Move closer"));
                            });
    });
}

TEST_F(QuickScreenPictures, TheCameraPermissionAlert)
{
    VextilCameraAuthorization::setHooks([] { return VextilCameraAuthorization::Denied; }, [](auto answer) { answer(false); },
                                        [] {});
    check(QStringLiteral("permission-alert"), [](QSize size) { return cameraScreen(size, QImage()); });
}

TEST_F(QuickScreenPictures, TheReview)
{
    auto *store = VextilRepository::sharedInstance();
    // One picture throughout: which of the playing images shows at a moment is the loop's
    // business (its own test), not the layout's.
    const QImage portrait = cameraPicture().copy(0, 69, 720, 1141);
    check(QStringLiteral("review"), [&](QSize size) {
        QuickHost host(size, false);
        VextilCaptureSession *session = host.session();
        if (!session)
            return QImage();
        // The capture ends as the session's does: the images stored, the flow told.
        store->setFaceImages(std::make_shared<QList<QImage>>(5, portrait));
        store->setFaceSmileImages(std::make_shared<QList<QImage>>(2, portrait));
        Q_EMIT session->finished(true);
        settle();
        return host.picture();
    });
}

// The QML preview as the user sees it: it follows the camera, the camera stops while the window is
// hidden, and the picture shows mirrored.
class QuickPreviewMotion : public QuickScreenPictures {
protected:
    void SetUp() override
    {
        QuickScreenPictures::SetUp();
        VextilToolkitSettings::sharedInstance()->setFrameSourceFactory([this] {
            auto camera = std::make_unique<StillCamera>();
            m_camera = camera.get();
            return camera;
        });
    }
    // What the window shows where the preview is.
    static QImage previewOf(const QuickHost &host)
    {
        const QImage window = host.picture();
        for (QQuickItem *item : host.window->findChildren<QQuickItem *>())
            if (QByteArray(item->metaObject()->className()).startsWith("VextilQuickPreview"))
                return window.copy(item->mapRectToScene(QRectF(0, 0, item->width(), item->height())).toRect());
        return {};
    }
    StillCamera *m_camera = nullptr;
};

TEST_F(QuickPreviewMotion, FollowsTheCameraWhichRestsWhileTheWindowIsHidden)
{
    QuickHost host(QSize(390, 844), false);
    VextilCaptureSession *session = host.session();
    ASSERT_TRUE(session && m_camera);
    Q_EMIT session->frameReady(cameraPicture(false));
    settle();
    const QImage neutral = previewOf(host);
    Q_EMIT session->frameReady(cameraPicture(true));
    settle();
    const QImage smiling = previewOf(host);
    ASSERT_FALSE(neutral.isNull());
    EXPECT_NE(neutral, smiling) << "the painted preview stayed on its first picture";
    EXPECT_TRUE(m_camera->isRunning());
    host.window->hide();
    EXPECT_TRUE(QTest::qWaitFor([&] { return !m_camera->isRunning(); }, 2000)) << "the camera films a hidden window";
    host.window->show();
    EXPECT_TRUE(QTest::qWaitFor([&] { return m_camera->isRunning(); }, 2000)) << "the camera did not come back";
}

TEST_F(QuickPreviewMotion, ShowsTheCamerasPictureMirroredAsASelfieCameraDoes)
{
    QuickHost host(QSize(390, 844), false);
    VextilCaptureSession *session = host.session();
    ASSERT_TRUE(session);
    QImage split(720, 1280, QImage::Format_RGB32);
    split.fill(QColor(200, 30, 30));  // the camera's left: red
    for (int y = 0; y < split.height(); ++y)
        for (int x = split.width() / 2; x < split.width(); ++x)
            split.setPixel(x, y, qRgb(30, 30, 200));  // its right: blue
    Q_EMIT session->frameReady(split);
    settle();
    const QImage preview = previewOf(host);
    ASSERT_FALSE(preview.isNull());
    // Points clear of the face frame's lines, a quarter in from each side, above the middle.
    const QColor left = preview.pixelColor(preview.width() / 8, preview.height() / 8);
    const QColor right = preview.pixelColor(preview.width() * 7 / 8, preview.height() / 8);
    // (The face frame's mask darkens the picture there; black would be no picture at all.)
    EXPECT_GT(left.blue(), 80) << "left: " << left.name().toStdString();
    EXPECT_GT(left.blue(), 3 * left.red()) << "left: " << left.name().toStdString();
    EXPECT_GT(right.red(), 80) << "right: " << right.name().toStdString();
    EXPECT_GT(right.red(), 3 * right.blue()) << "right: " << right.name().toStdString();
}

// Share of a row of the bar's rectangle in a picture painted in the given colour.
double filledShare(const QImage &picture, QRect bar, QColor fill)
{
    int filled = 0;
    const int y = bar.center().y();
    for (int x = bar.left(); x <= bar.right(); ++x) {
        const QColor pixel = picture.pixelColor(x, y);
        filled += std::abs(pixel.red() - fill.red()) + std::abs(pixel.green() - fill.green()) +
                              std::abs(pixel.blue() - fill.blue()) < 40 ? 1 : 0;
    }
    return double(filled) / bar.width();
}

TEST_F(QuickPreviewMotion, TheProgressBarsFillTravelsToANewValue)
{
    QuickHost host(QSize(390, 844), false);
    VextilCaptureSession *session = host.session();
    ASSERT_TRUE(session);
    QQuickItem *bar = nullptr;
    for (QQuickItem *item : host.window->findChildren<QQuickItem *>())
        if (item->property("shown").isValid() && item->height() == 15)
            bar = item;
    ASSERT_TRUE(bar) << "no progress bar";
    const QRect area = bar->mapRectToScene(QRectF(0, 0, bar->width(), bar->height())).toRect();
    Q_EMIT session->instructionChanged(QStringLiteral("Checking your face"));
    // Part-way through the 0.5-s animation; a busy machine that takes longer tries again.
    QImage partWay, end;
    for (int attempt = 0; attempt < 3; ++attempt) {
        Q_EMIT session->progressChanged(0.0);
        settle();
        QElapsedTimer clock;
        clock.start();
        Q_EMIT session->progressChanged(0.8);
        QTest::qWait(200);
        partWay = host.picture();
        const bool inTime = clock.elapsed() < 400;
        settle();
        end = host.picture();
        if (inTime)
            break;
    }
    const QColor fill = end.pixelColor(area.left() + 5, area.center().y());
    EXPECT_NEAR(filledShare(end, area, fill), 0.8, 0.05);
    const double share = filledShare(partWay, area, fill);
    EXPECT_GT(share, 0.05) << "the fill has not moved";
    EXPECT_LT(share, 0.7) << "the fill jumped to its end";
}

}  // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QUICK_BACKEND", "software");
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    QCoreApplication::setOrganizationName(QStringLiteral("VextilToolkitTests"));
    QSettings::setDefaultFormat(QSettings::IniFormat);
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope,
                       QDir::temp().filePath(QStringLiteral("vextil-tests-%1").arg(QCoreApplication::applicationPid())));
    VextilToolkitSettings::sharedInstance()->initWithAuthKey(QStringLiteral("picture-key"));
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
