#include <VextilToolkit/VextilToolkitSettings.h>

#include <VextilToolkit/VextilDefaultColorScheme.h>
#include <VextilToolkit/VextilRepository.h>

#include "core/VextilLocked.h"

#include <QCoreApplication>
#include <QDir>

namespace {

const QString kTranslationsDir = QStringLiteral(":/VextilToolkit/translations");
const QString kTranslationPrefix = QStringLiteral("vextiltoolkit_");

// The shipped translation of the locale's language in some other region (pt_PT gets pt_BR),
// since it reads better to its users than English.
QString sameLanguageTranslation(const QLocale &locale)
{
    for (const QString &name : VextilToolkitSettings::availableTranslations()) {
        if (QLocale(name).language() == locale.language())
            return kTranslationsDir + u'/' + kTranslationPrefix + name + QStringLiteral(".qm");
    }
    return {};
}

}  // namespace

VextilToolkitSettings::VextilToolkitSettings() : m_colorScheme(std::make_shared<VextilDefaultColorScheme>()) {}

VextilToolkitSettings *VextilToolkitSettings::sharedInstance()
{
    static VextilToolkitSettings *instance = new VextilToolkitSettings;
    return instance;
}

bool VextilToolkitSettings::initWithAuthKey(const std::optional<QString> &authKey)
{
    setAuthKey(authKey);
    // The store's copy is the one uploads use.
    VextilRepository::sharedInstance()->setAuthKey(authKey);
    return true;
}

std::optional<QString> VextilToolkitSettings::authKey() const { return readLocked(m_mutex, m_authKey); }
void VextilToolkitSettings::setAuthKey(const std::optional<QString> &authKey)
{
    writeLocked(m_mutex, m_authKey, authKey);
}

void VextilToolkitSettings::setColorScheme(std::shared_ptr<VextilColorScheme> colorScheme)
{
    writeLocked(m_mutex, m_colorScheme, std::move(colorScheme));
}

std::shared_ptr<VextilColorScheme> VextilToolkitSettings::getColorScheme() const
{
    return readLocked(m_mutex, m_colorScheme);
}
void VextilToolkitSettings::setReduceTransparency(bool reduce) { writeLocked(m_mutex, m_reduceTransparency, reduce); }
bool VextilToolkitSettings::isReduceTransparencyEnabled() const { return readLocked(m_mutex, m_reduceTransparency); }
void VextilToolkitSettings::setMirrorsPreview(bool mirrors) { writeLocked(m_mutex, m_mirrorsPreview, mirrors); }
bool VextilToolkitSettings::mirrorsPreview() const { return readLocked(m_mutex, m_mirrorsPreview); }
void VextilToolkitSettings::setCamera(const QString &camera) { writeLocked(m_mutex, m_camera, camera); }
QString VextilToolkitSettings::camera() const { return readLocked(m_mutex, m_camera); }
void VextilToolkitSettings::setFrameSourceFactory(FrameSourceFactory factory)
{
    writeLocked(m_mutex, m_frameSourceFactory, std::move(factory));
}
VextilToolkitSettings::FrameSourceFactory VextilToolkitSettings::frameSourceFactory() const
{
    return readLocked(m_mutex, m_frameSourceFactory);
}

QStringList VextilToolkitSettings::availableTranslations()
{
    QStringList names;
    for (const QString &file : QDir(kTranslationsDir).entryList({kTranslationPrefix + u'*'}, QDir::Files, QDir::Name))
        names.append(file.mid(kTranslationPrefix.size()).chopped(3));  // without ".qm"
    return names;
}

bool VextilToolkitSettings::installTranslations(const QLocale &locale)
{
    removeTranslations();
    if (locale.language() == QLocale::English)
        return true;  // the texts are written in English
    auto translator = std::make_unique<QTranslator>();
    const bool loaded = translator->load(locale, QStringLiteral("vextiltoolkit"), QStringLiteral("_"), kTranslationsDir)
                        || translator->load(sameLanguageTranslation(locale));
    if (!loaded || !QCoreApplication::installTranslator(translator.get()))
        return false;
    // Owned by the application, so that it goes with it rather than outliving it.
    translator->setParent(QCoreApplication::instance());
    m_translator = translator.release();
    return true;
}

void VextilToolkitSettings::removeTranslations()
{
    if (!m_translator)
        return;
    QCoreApplication::removeTranslator(m_translator);
    delete m_translator;
}
