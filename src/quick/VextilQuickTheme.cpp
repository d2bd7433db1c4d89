#include "quick/VextilQuickTheme.h"

#include "capture/VextilCameraColors.h"
#include "core/VextilSchemeAccess.h"

namespace {
// The screens draw their controls in the highlighted state, as the Widgets screens do.
std::shared_ptr<VextilColorScheme> scheme() { return currentColorScheme(); }
}  // namespace

QColor VextilQuickTheme::background() const { return scheme()->backgroundColor(); }
QColor VextilQuickTheme::buttonBackground() const { return scheme()->buttonBackgroundColorForState(kVextilHighlighted); }
QColor VextilQuickTheme::buttonTint() const { return scheme()->buttonTintColorForState(kVextilHighlighted); }
QColor VextilQuickTheme::cancelButtonBackground() const { return scheme()->cancelButtonBackgroundColorForState(kVextilHighlighted); }
QColor VextilQuickTheme::cancelButtonTint() const { return scheme()->cancelButtonTintColorForState(kVextilHighlighted); }
QColor VextilQuickTheme::navigationTitle() const { return scheme()->navigationTitleColor(); }
QColor VextilQuickTheme::backButton() const { return scheme()->backButtonColor(); }
QColor VextilQuickTheme::popUpBackground() const { return scheme()->popUpBackgroundColor(); }
QColor VextilQuickTheme::popUpText() const { return scheme()->popUpTextColor(); }
QColor VextilQuickTheme::popUpButtonTint() const { return scheme()->popUpButtonTintColorForState(kVextilHighlighted); }
QColor VextilQuickTheme::popUpButtonBackground() const { return scheme()->popUpButtonBackgroundColorForState(kVextilHighlighted); }
QColor VextilQuickTheme::popUpIcon() const { return scheme()->popUpIconColorForState(kVextilHighlighted); }
QColor VextilQuickTheme::confirmQuestionText() const { return scheme()->confirmQuestionTextColor(); }
bool VextilQuickTheme::reduceTransparency() const { return VextilToolkitSettings::sharedInstance()->isReduceTransparencyEnabled(); }
QColor VextilQuickTheme::progressTrack() const { return VextilCameraColors::progressTrack(); }
QColor VextilQuickTheme::progressFill() const { return VextilCameraColors::progressFill(); }
QColor VextilQuickTheme::smileText() const { return VextilCameraColors::popupText(); }
QColor VextilQuickTheme::smileBackground() const { return VextilCameraColors::popupBackground(); }
