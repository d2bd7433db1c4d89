// vextil_demo_host: a small host application of the toolkit.
//   vextil_demo_host [--key KEY] [--upload-host HOST:PORT] [--upload-ca PEM] [--camera-file CLIP]
//                    [--locale NAME] [--scheme] [--no-tutorial] [--unattended --screenshots DIR]
// The upload goes to --upload-host, set in code as a host would; without it, to the build's
// default (or VEXTIL_UPLOAD_HOST in development builds).

#include <VextilToolkit/VextilDefaultColorScheme.h>
#include <VextilToolkit/VextilFace.h>
#include <VextilToolkit/VextilRepository.h>
#include <VextilToolkit/VextilToolkitSettings.h>
#include <VextilToolkit/VextilVideoFileSource.h>

#include "DemoWindow.h"
#include "UnattendedDriver.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QFile>

#include <cstdio>

namespace {

// A host's own colours: teal accents instead of the toolkit's blue and violet.
class TealScheme : public VextilDefaultColorScheme {
public:
    QColor buttonBackgroundColorForState(int) const override { return QColor("#00796b"); }
    QColor navigationTitleColor() const override { return QColor("#00796b"); }
    QColor backButtonColor() const override { return QColor("#00796b"); }
    QColor confirmQuestionTextColor() const override { return QColor("#004d40"); }
    QColor popUpButtonBackgroundColorForState(int) const override { return QColor("#00796b"); }
};

}  // namespace

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    QCommandLineParser options;
    options.setApplicationDescription(QStringLiteral("VextilToolkit demo host."));
    options.addHelpOption();
    options.addOption({QStringLiteral("key"), QStringLiteral("Authentication key."), QStringLiteral("key"), QStringLiteral("demo-key")});
    options.addOption({QStringLiteral("upload-host"), QStringLiteral("Upload service, host:port."), QStringLiteral("host")});
    options.addOption({QStringLiteral("upload-ca"), QStringLiteral("PEM file of an extra authority to trust for the upload."),
                       QStringLiteral("file")});
    options.addOption({QStringLiteral("camera-file"), QStringLiteral("Video file standing in for the camera."), QStringLiteral("file")});
    options.addOption({QStringLiteral("locale"), QStringLiteral("Language of the toolkit's screens, such as de, es or pt_BR; the system's by default."),
                       QStringLiteral("name")});
    options.addOption({QStringLiteral("scheme"), QStringLiteral("Use the host's own colour scheme.")});
    options.addOption({QStringLiteral("no-tutorial"), QStringLiteral("Open the camera without the tutorial.")});
    options.addOption({QStringLiteral("unattended"), QStringLiteral("Answer every screen automatically, then quit.")});
    options.addOption({QStringLiteral("screenshots"), QStringLiteral("Folder for the unattended run's screenshots."),
                       QStringLiteral("dir"), QStringLiteral("screenshots")});
    options.process(app);

    VextilToolkitSettings::sharedInstance()->initWithAuthKey(options.value(QStringLiteral("key")));
    const QLocale locale = options.isSet(QStringLiteral("locale")) ? QLocale(options.value(QStringLiteral("locale"))) : QLocale::system();
    if (!VextilToolkitSettings::sharedInstance()->installTranslations(locale) && options.isSet(QStringLiteral("locale")))
        std::fprintf(stderr, "note: no translation for \"%s\"; the screens stay in English\n", qPrintable(options.value(QStringLiteral("locale"))));
    VextilRepository *store = VextilRepository::sharedInstance();
    store->setUploadHost(options.value(QStringLiteral("upload-host")));
    if (options.isSet(QStringLiteral("upload-ca"))) {
        QFile authority(options.value(QStringLiteral("upload-ca")));
        if (!authority.open(QIODevice::ReadOnly) || !store->setExtraCertificateAuthorities({authority.readAll()})) {
            std::fprintf(stderr, "error: cannot read a certificate from %s\n", qPrintable(authority.fileName()));
            return 1;
        }
    }
    if (options.isSet(QStringLiteral("scheme")))
        VextilToolkitSettings::sharedInstance()->setColorScheme(std::make_shared<TealScheme>());
    if (options.isSet(QStringLiteral("no-tutorial")))  // otherwise the facade's default, as a host that sets nothing
        VextilFace::sharedInstance()->presentTutorial(false);
    QString clip = options.value(QStringLiteral("camera-file"));
    if (clip.isEmpty() && options.isSet(QStringLiteral("unattended")))
        clip = QStringLiteral(VEXTIL_SELFIE_CLIP);
    if (!clip.isEmpty() && !VextilVideoFileSource(clip).isAvailable()) {
        std::fprintf(stderr, "error: cannot read the video file %s\n", qPrintable(clip));
        return 1;
    }
    if (!clip.isEmpty())
        VextilFace::sharedInstance()->setFrameSourceFactory([clip] { return std::make_unique<VextilVideoFileSource>(clip, true); });

    DemoWindow window;
    window.resize(390, 844);
    window.show();
    if (!options.isSet(QStringLiteral("unattended")))
        return app.exec();
    UnattendedDriver driver(&window, options.value(QStringLiteral("screenshots")));
    driver.start();
    return app.exec();
}
