// qml_consumer CLIP HOST:PORT AUTHORITY.pem: captures with the clip as the camera, accepts the
// review as a user would, and uploads to the given service; exits 0 once the upload succeeded
// with no Qt Widgets loaded into the process at any point of it.
#include <VextilToolkit/VextilRepository.h>
#include <VextilToolkit/VextilToolkitSettings.h>

#include <QFile>
#include <QGuiApplication>
#include <QQmlApplicationEngine>

#include <cstdio>

int main(int argc, char **argv)
{
    QGuiApplication app(argc, argv);
    if (argc != 4)
        return 64;
    VextilToolkitSettings::sharedInstance()->initWithAuthKey(QStringLiteral("demo-key"));
    QFile authority(QString::fromLocal8Bit(argv[3]));
    if (!authority.open(QIODevice::ReadOnly))
        return 66;
    VextilRepository::sharedInstance()->setUploadHost(QString::fromLocal8Bit(argv[2]));
    VextilRepository::sharedInstance()->setExtraCertificateAuthorities({authority.readAll()});

    QQmlApplicationEngine engine;
    engine.setInitialProperties({{QStringLiteral("clip"), QString::fromLocal8Bit(argv[1])}});
    engine.load(QUrl(QStringLiteral("qrc:/consumer/Main.qml")));
    if (engine.rootObjects().isEmpty())
        return 70;
    const int code = app.exec();
    QFile maps(QStringLiteral("/proc/self/maps"));
    if (maps.open(QIODevice::ReadOnly) && maps.readAll().contains("libQt6Widgets")) {
        std::fprintf(stderr, "Qt Widgets was loaded into a QML host\n");
        return 72;
    }
    return code;
}
