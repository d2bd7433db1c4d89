#include <VextilToolkit/VextilToolkitSettings.h>

#include <VextilToolkit/VextilDefaultColorScheme.h>
#include <VextilToolkit/VextilRepository.h>

#include "core/VextilLocked.h"

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
void VextilToolkitSettings::setAuthKey(const std::optional<QString> &authKey) { writeLocked(m_mutex, m_authKey, authKey); }

void VextilToolkitSettings::setColorScheme(std::shared_ptr<VextilColorScheme> colorScheme)
{
    writeLocked(m_mutex, m_colorScheme, std::move(colorScheme));
}

std::shared_ptr<VextilColorScheme> VextilToolkitSettings::getColorScheme() const { return readLocked(m_mutex, m_colorScheme); }
void VextilToolkitSettings::setReduceTransparency(bool reduce) { writeLocked(m_mutex, m_reduceTransparency, reduce); }
bool VextilToolkitSettings::isReduceTransparencyEnabled() const { return readLocked(m_mutex, m_reduceTransparency); }
void VextilToolkitSettings::setMirrorsPreview(bool mirrors) { writeLocked(m_mutex, m_mirrorsPreview, mirrors); }
bool VextilToolkitSettings::mirrorsPreview() const { return readLocked(m_mutex, m_mirrorsPreview); }
