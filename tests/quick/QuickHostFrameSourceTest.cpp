// A QML host that brings its own camera pipeline: a frame source written here, set from C++
// before the QML loads, carries a whole capture through the Qt Quick face.
#include <VextilToolkit/VextilCameraAuthorization.h>
#include <VextilToolkit/VextilFrameSource.h>
#include <VextilToolkit/VextilRepository.h>
#include <VextilToolkit/VextilToolkitSettings.h>
#include <VextilToolkit/VextilVideoFileReader.h>

#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace {

// The host's pipeline: the sample clip read on a thread of its own at 15 frames a second.
class HostPipeline : public VextilFrameSource {
public:
    explicit HostPipeline(std::atomic<int> &delivered) : m_delivered(delivered) {}
    ~HostPipeline() override { stop(); }
    void start() override
    {
        stop();
        m_running = true;
        m_thread = std::thread([this] {
            VextilVideoFileReader reader;
            reader.open(QStringLiteral(VEXTIL_SELFIE_CLIP));
            const auto started = std::chrono::steady_clock::now();
            while (m_running) {
                auto frame = reader.readFrame();
                if (!frame && (!reader.rewind() || !(frame = reader.readFrame())))
                    return;
                std::this_thread::sleep_until(started + std::chrono::milliseconds(frame->index * 1000 / 15));
                deliver(VextilCameraFrame(frame->image, 0));
                ++m_delivered;
            }
        });
    }
    void stop() override
    {
        m_running = false;
        if (m_thread.joinable())
            m_thread.join();
    }
    bool isRunning() const override { return m_running; }
    QString description() const override { return QStringLiteral("the host's pipeline"); }
    bool isAvailable() const override { return true; }

private:
    std::atomic<int> &m_delivered;
    std::atomic<bool> m_running{false};
    std::thread m_thread;
};

}  // namespace

TEST(QuickHostFrameSource, CarriesAWholeCaptureThroughTheQmlFace)
{
    std::atomic<int> delivered{0};
    VextilCameraAuthorization::setHooks([] { return VextilCameraAuthorization::Authorized; }, {}, {});
    VextilToolkitSettings::sharedInstance()->setFrameSourceFactory(
        [&delivered] { return std::make_unique<HostPipeline>(delivered); });
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
