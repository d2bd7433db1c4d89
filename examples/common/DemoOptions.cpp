#include "DemoOptions.h"

#include <VextilToolkit/VextilDefaultColorScheme.h>
#include <VextilToolkit/VextilRepository.h>
#include <VextilToolkit/VextilToolkitSettings.h>
#include <VextilToolkit/VextilVideoFileSource.h>

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

DemoOptions::DemoOptions(const QString &description)
{
    m_parser.setApplicationDescription(description);
    m_parser.addHelpOption();
    m_parser.addOption({QStringLiteral("key"), QStringLiteral("Authentication key."), QStringLiteral("key"), QStringLiteral("demo-key")});
    m_parser.addOption({QStringLiteral("upload-host"), QStringLiteral("Upload service, host:port."), QStringLiteral("host")});
    m_parser.addOption({QStringLiteral("upload-ca"), QStringLiteral("PEM file of an extra authority to trust for the upload."),
                        QStringLiteral("file")});
    m_parser.addOption({QStringLiteral("camera-file"), QStringLiteral("Video file standing in for the camera."), QStringLiteral("file")});
    m_parser.addOption({QStringLiteral("locale"), QStringLiteral("Language of the toolkit's screens, such as de, es or pt_BR; the system's by default."),
                        QStringLiteral("name")});
    m_parser.addOption({QStringLiteral("scheme"), QStringLiteral("Use the host's own colour scheme.")});
    m_parser.addOption({QStringLiteral("no-tutorial"), QStringLiteral("Open the camera without the tutorial.")});
    m_parser.addOption({QStringLiteral("own-pipeline"),
                        QStringLiteral("QML demo host: feed the camera file through a frame source of the host's own.")});
    m_parser.addOption({QStringLiteral("size"), QStringLiteral("Size of the host window, such as 1080x1920 (390x844 by default)."),
                        QStringLiteral("WxH")});
    m_parser.addOption({QStringLiteral("unattended"), QStringLiteral("Answer every screen automatically, then quit.")});
    m_parser.addOption({QStringLiteral("screenshots"), QStringLiteral("Folder for the unattended run's screenshots."),
                        QStringLiteral("dir"), QStringLiteral("screenshots")});
}

bool DemoOptions::apply(const QCoreApplication &app)
{
    m_parser.process(app);
    VextilToolkitSettings *settings = VextilToolkitSettings::sharedInstance();
    settings->initWithAuthKey(value(QStringLiteral("key")));
    const QLocale locale = isSet(QStringLiteral("locale")) ? QLocale(value(QStringLiteral("locale"))) : QLocale::system();
    if (!settings->installTranslations(locale) && isSet(QStringLiteral("locale")))
        std::fprintf(stderr, "note: no translation for \"%s\"; the screens stay in English\n", qPrintable(value(QStringLiteral("locale"))));
    VextilRepository *store = VextilRepository::sharedInstance();
    store->setUploadHost(value(QStringLiteral("upload-host")));
    if (isSet(QStringLiteral("upload-ca"))) {
        QFile authority(value(QStringLiteral("upload-ca")));
        if (!authority.open(QIODevice::ReadOnly) || !store->setExtraCertificateAuthorities({authority.readAll()})) {
            std::fprintf(stderr, "error: cannot read a certificate from %s\n", qPrintable(authority.fileName()));
            return false;
        }
    }
    if (isSet(QStringLiteral("scheme")))
        settings->setColorScheme(std::make_shared<TealScheme>());
    if (isSet(QStringLiteral("size"))) {
        const QStringList sides = value(QStringLiteral("size")).split(QLatin1Char('x'));
        m_size = sides.size() == 2 ? QSize(sides[0].toInt(), sides[1].toInt()) : QSize();
        if (m_size.isEmpty()) {
            std::fprintf(stderr, "error: --size takes WIDTHxHEIGHT, such as 1080x1920\n");
            return false;
        }
    }
    m_clip = value(QStringLiteral("camera-file"));
    if (m_clip.isEmpty() && isSet(QStringLiteral("unattended")))
        m_clip = QStringLiteral(VEXTIL_SELFIE_CLIP);
    if (!m_clip.isEmpty() && !VextilVideoFileSource(m_clip).isAvailable()) {
        std::fprintf(stderr, "error: cannot read the video file %s\n", qPrintable(m_clip));
        return false;
    }
    return true;
}
