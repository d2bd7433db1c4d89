// vextil_qml_demo_host: the demo host written in QML (Main.qml), over the toolkit's Qt Quick
// module; the same options as vextil_demo_host (DemoOptions.h), and --own-pipeline: the camera
// file comes through a frame source of the host's own (HostPipeline.h) instead of the toolkit's.

#include "DemoOptions.h"
#include "HostPipeline.h"
#include "QuickDriver.h"

#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQuickWindow>

#include <VextilToolkit/VextilToolkitSettings.h>

int main(int argc, char **argv)
{
    QGuiApplication app(argc, argv);
    DemoOptions options(QStringLiteral("VextilToolkit QML demo host."));
    if (!options.apply(app))
        return 1;

    // The host's pipeline is set from C++ before the QML loads; the camera screens ask for it.
    const bool ownPipeline = options.isSet(QStringLiteral("own-pipeline")) && !options.clip().isEmpty();
    if (ownPipeline) {
        const QString clip = options.clip();
        VextilToolkitSettings::sharedInstance()->setFrameSourceFactory([clip] { return std::make_unique<HostPipeline>(clip); });
    }
    QQmlApplicationEngine engine;
    engine.setInitialProperties({{QStringLiteral("presentTutorial"), !options.isSet(QStringLiteral("no-tutorial"))},
                                 {QStringLiteral("cameraFile"), ownPipeline ? QString() : options.clip()},
                                 {QStringLiteral("width"), options.windowSize().width()},
                                 {QStringLiteral("height"), options.windowSize().height()}});
    engine.load(QUrl(QStringLiteral("qrc:/qml-demo-host/Main.qml")));
    auto *window = engine.rootObjects().isEmpty() ? nullptr : qobject_cast<QQuickWindow *>(engine.rootObjects().first());
    if (!window)
        return 1;
    if (!options.isSet(QStringLiteral("unattended")))
        return app.exec();
    QuickDriver driver(window, options.value(QStringLiteral("screenshots")));
    driver.start();
    return app.exec();
}
