// A QML host that brings its own camera pipeline: a frame source written here, set from C++
// before the QML loads, carries a whole capture through the Qt Quick face.
#include <VextilToolkit/VextilCameraAuthorization.h>
#include <VextilToolkit/VextilFrameSource.h>
#include <VextilToolkit/VextilRepository.h>
#include <VextilToolkit/VextilToolkitSettings.h>

#include "ClipPlayer.h"

#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

#include <atomic>


TEST(QuickHostFrameSource, CarriesAWholeCaptureThroughTheQmlFace)
{
    std::atomic<int> delivered{0};
    VextilCameraAuthorization::setHooks([] { return VextilCameraAuthorization::Authorized; }, {}, {});
    VextilToolkitSettings::sharedInstance()->setFrameSourceFactory(
        [&delivered] { return std::make_unique<ClipPlayer>(VEXTIL_SELFIE_CLIP, QTransform(), 0, &delivered); });
    VextilRepository::sharedInstance()->resetAllImages();

    QQmlEngine engine;
    QQmlComponent component(&engine);
    component.setData("import QtQuick\nimport VextilToolkit\n"
                      "Window { width: 390; height: 844\n"
                      "  FaceCapture { objectName: \"capture\"; presentTutorial: false } }",
                      QUrl());
    std::unique_ptr<QQuickWindow> window(qobject_cast<QQuickWindow *>(component.create()));
    ASSERT_TRUE(window) << component.errorString().toStdString();
    window->show();
    auto *capture = window->findChild<QQuickItem *>(QStringLiteral("capture"));
    QSignalSpy finished(capture, SIGNAL(finished(bool, QVariant)));
    QMetaObject::invokeMethod(capture, "requestFace");

    const auto review = [&] { return capture->property("reviewScreen").value<QQuickItem *>(); };
    ASSERT_TRUE(QTest::qWaitFor([&] { return review() != nullptr; }, 40000)) << "the capture did not complete";
    EXPECT_GT(delivered.load(), 0);
    const auto *camera = capture->property("cameraScreen").value<QQuickItem *>();
    const QVariantMap stats = camera->property("session").value<QObject *>()->property("stats").toMap();
    EXPECT_GT(stats.value(QStringLiteral("instructionChanges")).toInt(), 0) << "no instruction's felt delay was measured";
    EXPECT_GE(stats.value(QStringLiteral("p50InstructionDelayMs")).toDouble(), 0.0);
    QMetaObject::invokeMethod(review(), "answer", Q_ARG(QVariant, true));
    ASSERT_TRUE(QTest::qWaitFor([&] { return finished.count() == 1; }, 5000));
    EXPECT_TRUE(finished.first().at(0).toBool());
    const auto store = VextilRepository::sharedInstance();
    ASSERT_TRUE(store->getFaceImages() && store->getFaceSmileImagess());
    EXPECT_EQ(store->getFaceImages()->size(), 5);
    EXPECT_EQ(store->getFaceSmileImagess()->size(), 2);
    const int atTheEnd = delivered;
    QTest::qWait(300);
    EXPECT_LE(delivered.load(), atTheEnd + 1) << "the host's pipeline was left running after the flow";

    VextilToolkitSettings::sharedInstance()->setFrameSourceFactory({});
    VextilCameraAuthorization::setHooks({}, {}, {});
}
