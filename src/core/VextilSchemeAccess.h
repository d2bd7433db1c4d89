#pragma once

#include <VextilToolkit/VextilDefaultColorScheme.h>
#include <VextilToolkit/VextilToolkitSettings.h>

// The colour scheme views read when they set up their colours: the host's, or the default
// when the host stored none.
inline std::shared_ptr<VextilColorScheme> currentColorScheme()
{
    auto scheme = VextilToolkitSettings::sharedInstance()->getColorScheme();
    return scheme ? scheme : std::make_shared<VextilDefaultColorScheme>();
}

// Control state the toolkit passes to every state getter: highlighted.
constexpr int kVextilHighlighted = 1;
