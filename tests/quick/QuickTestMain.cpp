// Runs the QML tests (tst_*.qml) of the toolkit's Qt Quick module with Qt Quick Test, on the
// installed-like module of the build tree. The toolkit is set up as a host would: a key, and an
// upload host nothing listens on, so that a send answers with the toolkit's error.

#include <VextilToolkit/VextilCameraAuthorization.h>
#include <VextilToolkit/VextilRepository.h>
#include <VextilToolkit/VextilToolkitSettings.h>

#include "core/VextilPortraitLock.h"

#include <QGuiApplication>
#include <QQmlContext>
#include <QQmlEngine>
#include <QtQuickTest>

// What the system answers about camera access, as the tests want it (cameraPermission in QML).
class CameraPermission : public QObject {
    Q_OBJECT
    Q_PROPERTY(int settingsOpened MEMBER m_settingsOpened NOTIFY settingsOpenedChanged)
public:
    /// "authorized", "denied" or "restricted".
    Q_INVOKABLE void answer(const QString &status)
    {
        const auto value = status == QLatin1String("denied")       ? VextilCameraAuthorization::Denied
                           : status == QLatin1String("restricted") ? VextilCameraAuthorization::Restricted
                                                                   : VextilCameraAuthorization::Authorized;
        VextilCameraAuthorization::setHooks([value] { return value; }, {}, [this] {
            ++m_settingsOpened;
            Q_EMIT settingsOpenedChanged();
        });
    }
    /// The user comes back to the application (from the system's settings, say).
    Q_INVOKABLE void comeBack() { Q_EMIT qGuiApp->applicationStateChanged(Qt::ApplicationActive); }
Q_SIGNALS:
    void settingsOpenedChanged();

private:
    int m_settingsOpened = 0;
};

// Whether the toolkit holds the phone upright (portrait in QML); on a desktop only the count.
class Portrait : public QObject {
    Q_OBJECT
public:
    Q_INVOKABLE bool held() const { return VextilPortraitLock::isHeld(); }
};

class QuickTestSetup : public QObject {
    Q_OBJECT
public Q_SLOTS:
    void applicationAvailable()
    {
        VextilToolkitSettings::sharedInstance()->initWithAuthKey(QStringLiteral("quick-test-key"));
        VextilRepository::sharedInstance()->setUploadHost(QStringLiteral("127.0.0.1:9"));
    }

    void qmlEngineAvailable(QQmlEngine *engine)
    {
        engine->rootContext()->setContextProperty(QStringLiteral("sampleClip"), QStringLiteral(VEXTIL_SELFIE_CLIP));
        engine->rootContext()->setContextProperty(QStringLiteral("landscapeClip"), QStringLiteral(VEXTIL_CLIP_LANDSCAPE));
        engine->rootContext()->setContextProperty(QStringLiteral("guidedCloserClip"),
                                                  QStringLiteral(VEXTIL_GUIDED_CLOSER_CLIP));
        engine->rootContext()->setContextProperty(QStringLiteral("cameraPermission"), &m_permission);
        engine->rootContext()->setContextProperty(QStringLiteral("portrait"), &m_portrait);
        m_permission.answer(QStringLiteral("authorized"));
    }

private:
    CameraPermission m_permission;
    Portrait m_portrait;
};

QUICK_TEST_MAIN_WITH_SETUP(vextil_quick, QuickTestSetup)

#include "QuickTestMain.moc"
