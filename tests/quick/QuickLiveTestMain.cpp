// Runs the QML tests of tests/quick-live on Qt's live camera path: the GStreamer fake camera
// stands in for the device, as a host's camera would, with no video file set.

#include <VextilToolkit/VextilCameraAuthorization.h>
#include <VextilToolkit/VextilRepository.h>
#include <VextilToolkit/VextilToolkitSettings.h>

#include "FakeCamera.h"

#include <QQmlContext>
#include <QQmlEngine>
#include <QtQuickTest>

// The camera's state as the tests read it (fakeCamera in QML).
class FakeCameraState : public QObject {
    Q_OBJECT
public:
    /// "open" while the camera films, "closed" once it has been let go.
    Q_INVOKABLE QString state() const { return QString::fromUtf8(FakeCamera::state()); }
    /// How often the camera has been started.
    Q_INVOKABLE int opens() const { return FakeCamera::opens(); }
};

class QuickLiveTestSetup : public QObject {
    Q_OBJECT
public Q_SLOTS:
    void applicationAvailable()
    {
        // Before Qt Multimedia's first use: the camera list is read once per process.
        FakeCamera{QStringLiteral(VEXTIL_SELFIE_CLIP), "YUY2", "720x1280", {}}.install();
        VextilToolkitSettings::sharedInstance()->initWithAuthKey(QStringLiteral("quick-test-key"));
        VextilRepository::sharedInstance()->setUploadHost(QStringLiteral("127.0.0.1:9"));
        VextilCameraAuthorization::setHooks({}, {}, {});
    }

    void qmlEngineAvailable(QQmlEngine *engine)
    {
        engine->rootContext()->setContextProperty(QStringLiteral("fakeCamera"), &m_camera);
    }

    void cleanupTestCase() { FakeCamera::endParkedThreads(); }

private:
    FakeCameraState m_camera;
};

QUICK_TEST_MAIN_WITH_SETUP(vextil_quick_live, QuickLiveTestSetup)

#include "QuickLiveTestMain.moc"
