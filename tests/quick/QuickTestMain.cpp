// Runs the QML tests (tst_*.qml) of the toolkit's Qt Quick module with Qt Quick Test, on the
// installed-like module of the build tree. The toolkit is set up as a host would: a key, and an
// upload host nothing listens on, so that a send answers with the toolkit's error.

#include <VextilToolkit/VextilRepository.h>
#include <VextilToolkit/VextilToolkitSettings.h>

#include <QQmlContext>
#include <QQmlEngine>
#include <QtQuickTest>

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
    }
};

QUICK_TEST_MAIN_WITH_SETUP(vextil_quick, QuickTestSetup)

#include "QuickTestMain.moc"
