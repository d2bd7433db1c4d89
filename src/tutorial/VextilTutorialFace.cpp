#include "tutorial/VextilTutorialFace.h"

#include "core/VextilTranslation.h"
#include "ui/VextilSchemeAccess.h"

#include <QCoreApplication>

VextilTutorialFace::VextilTutorialFace(QWidget *parent) : VextilTutorialView(parent)
{
    setupViews();
}

QStringList VextilTutorialFace::tipTexts()
{
    return {QStringLiteral("Look for a brighter spot  with no light reflection"), QStringLiteral("Remove any glasses and hat"),
            QStringLiteral("Smile to save the photo"), QStringLiteral("The photo is taken automatically")};
}

void VextilTutorialFace::setupViews()
{
    const QColor iconColor = currentColorScheme()->popUpIconColorForState(kVextilHighlighted);
    const QStringList images{QStringLiteral("ilustra_light"), QStringLiteral("ilustraHat"), QStringLiteral("ilustraSmile"),
                             QStringLiteral("ilustra_automatic")};
    QLabel *labels[4] = {topLeftTipLabel(), topRightTipLabel(), bottomLeftTipLabel(), bottomRightTipLabel()};
    VextilImageView *icons[4] = {topLeftIconImageView(), topRightIconImageView(), bottomLeftIconImageView(),
                                 bottomRightImageView()};
    const QStringList texts = tipTexts();
    for (int i = 0; i < 4; ++i) {
        const QString text = translated(texts[i].toUtf8().constData());
        labels[i]->setText(text);
        labels[i]->setAccessibleName(text);
        icons[i]->setImageName(images[i]);
        icons[i]->setAccessibleName(text);
        icons[i]->setTintColor(iconColor);  // all four in one colour, as templates
    }
    updateConstraints();
}
