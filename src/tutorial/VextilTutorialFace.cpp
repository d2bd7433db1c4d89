#include "tutorial/VextilTutorialFace.h"

#include "core/VextilTexts.h"
#include "ui/VextilSchemeAccess.h"

#include <QCoreApplication>

VextilTutorialFace::VextilTutorialFace(QWidget *parent) : VextilTutorialView(parent)
{
    setupViews();
}

QStringList VextilTutorialFace::tipTexts()
{
    // The double blank in the first tip is part of its translation key.
    static const char *const tips[] = {
        QT_TRANSLATE_NOOP("VextilToolkit", "Look for a brighter spot  with no light reflection"),
        QT_TRANSLATE_NOOP("VextilToolkit", "Remove any glasses and hat"),
        QT_TRANSLATE_NOOP("VextilToolkit", "Smile to save the photo"),
        QT_TRANSLATE_NOOP("VextilToolkit", "The photo is taken automatically")};
    return {QLatin1String(tips[0]), QLatin1String(tips[1]), QLatin1String(tips[2]), QLatin1String(tips[3])};
}

void VextilTutorialFace::setupViews()
{
    const QColor iconColor = currentColorScheme()->popUpIconColorForState(kVextilHighlighted);
    const QStringList images{QStringLiteral("ilustra_light"), QStringLiteral("ilustraHat"), QStringLiteral("ilustraSmile"),
                             QStringLiteral("ilustra_automatic")};
    VextilLabel *labels[4] = {topLeftTipLabel(), topRightTipLabel(), bottomLeftTipLabel(), bottomRightTipLabel()};
    VextilImageView *icons[4] = {topLeftIconImageView(), topRightIconImageView(), bottomLeftIconImageView(),
                                 bottomRightImageView()};
    const QStringList texts = tipTexts();
    for (int i = 0; i < 4; ++i) {
        const QString text = VextilTexts::tr(texts[i].toLatin1().constData());
        labels[i]->setText(text);
        icons[i]->setImageName(images[i]);
        icons[i]->setAccessibleName(text);
        icons[i]->setTintColor(iconColor);  // all four in one colour, as templates
    }
    updateConstraints();
}
