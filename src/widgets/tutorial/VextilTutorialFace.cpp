#include "widgets/tutorial/VextilTutorialFace.h"

#include "core/VextilTexts.h"
#include "widgets/ui/VextilAccessibility.h"
#include "core/VextilSchemeAccess.h"

#include <QCoreApplication>

namespace {

// The tips' translation keys, top left to bottom right; the double blank in the first is part of its key.
const char *const kTips[] = {
    QT_TRANSLATE_NOOP("VextilToolkit", "Look for a brighter spot  with no light reflection"),
    QT_TRANSLATE_NOOP("VextilToolkit", "Remove any glasses and hat"),
    QT_TRANSLATE_NOOP("VextilToolkit", "Smile to save the photo"),
    QT_TRANSLATE_NOOP("VextilToolkit", "The photo is taken automatically")};

}  // namespace

VextilTutorialFace::VextilTutorialFace(QWidget *parent) : VextilTutorialView(parent)
{
    setupViews();
}

void VextilTutorialFace::setupViews()
{
    VextilAccessibility::setRole(this, QAccessible::Dialog);
    setAccessibleName(VextilTexts::tr("Tips"));
    const QColor iconColor = currentColorScheme()->popUpIconColorForState(kVextilHighlighted);
    const QStringList images{QStringLiteral("ilustra_light"), QStringLiteral("ilustraHat"), QStringLiteral("ilustraSmile"),
                             QStringLiteral("ilustra_automatic")};
    VextilLabel *labels[4] = {topLeftTipLabel(), topRightTipLabel(), bottomLeftTipLabel(), bottomRightTipLabel()};
    VextilImageView *icons[4] = {topLeftIconImageView(), topRightIconImageView(), bottomLeftIconImageView(),
                                 bottomRightImageView()};
    for (int i = 0; i < 4; ++i) {
        const QString text = VextilTexts::tr(kTips[i]);
        labels[i]->setText(text);
        icons[i]->setImageName(images[i]);
        VextilAccessibility::setDecorative(icons[i]);  // the caption beside it is the tip, read once
        icons[i]->setTintColor(iconColor);  // all four in one colour, as templates
    }
    updateConstraints();
}
