// vextil_demo_host: a small Qt Widgets host application of the toolkit; options in DemoOptions.h.
// The upload goes to --upload-host, set in code as a host would; without it, to the build's
// default (or VEXTIL_UPLOAD_HOST in development builds).

#include <VextilToolkit/VextilFace.h>
#include <VextilToolkit/VextilVideoFileSource.h>

#include "DemoOptions.h"
#include "DemoWindow.h"
#include "UnattendedDriver.h"

#include <QApplication>

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    DemoOptions options(QStringLiteral("VextilToolkit demo host."));
    if (!options.apply(app))
        return 1;
    if (options.isSet(QStringLiteral("no-tutorial")))  // otherwise the facade's default, as a host that sets nothing
        VextilFace::sharedInstance()->presentTutorial(false);
    if (const QString clip = options.clip(); !clip.isEmpty())
        VextilFace::sharedInstance()->setFrameSourceFactory([clip] { return std::make_unique<VextilVideoFileSource>(clip, true); });

    DemoWindow window;
    window.resize(options.windowSize());
    window.show();
    if (!options.isSet(QStringLiteral("unattended")))
        return app.exec();
    UnattendedDriver driver(&window, options.value(QStringLiteral("screenshots")));
    driver.start();
    return app.exec();
}
