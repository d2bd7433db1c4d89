#include "GuidedClips.h"

#include <QFileInfo>

GuidedClip guidedClip(const QString &path)
{
    const QString name = QFileInfo(path).completeBaseName();
    if (name.startsWith(QLatin1String("guided_closer_desktop")))
        return {QStringLiteral("Move closer"), kDesktopView};
    if (name == QLatin1String("guided_back"))
        return {QStringLiteral("Move back"), kPhoneView};
    if (name == QLatin1String("guided_centre"))
        return {QStringLiteral("Center your face"), kPhoneView};
    if (name == QLatin1String("guided_light"))
        return {QStringLiteral("Find more light"), kPhoneView};
    if (name == QLatin1String("guided_still"))
        return {QStringLiteral("Hold still"), kPhoneView};
    return {};
}

QString guidedClipPath(const QString &name)
{
    for (const QString &path : clipList(VEXTIL_GUIDED_CLIPS))
        if (QFileInfo(path).completeBaseName() == name)
            return path;
    return {};
}
