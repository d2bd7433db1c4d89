#pragma once

#include <VextilToolkit/VextilToolkitSettings.h>

#include "PictureCheck.h"
#include "PictureScheme.h"

#include <QSize>

#include <functional>

// Renders one state of a face's screens at two phone sizes, a desktop window and a phone on its
// side, in the default colours and a host's, and compares each rendering with its reviewed
// picture FACE/STATE-LOOK-WxH.
inline void checkEveryLook(const QString &face, const QString &state, const std::function<QImage(QSize)> &render)
{
    auto *settings = VextilToolkitSettings::sharedInstance();
    for (const bool hostScheme : {false, true}) {
        settings->setColorScheme(hostScheme ? std::make_shared<PictureScheme>() : std::make_shared<VextilDefaultColorScheme>());
        for (const QSize size : {QSize(390, 844), QSize(1080, 1920), QSize(1280, 800), QSize(844, 390)}) {
            const QString name = QStringLiteral("%1/%2-%3-%4x%5")
                                     .arg(face, state, hostScheme ? QStringLiteral("host") : QStringLiteral("default"))
                                     .arg(size.width())
                                     .arg(size.height());
            EXPECT_TRUE(PictureCheck().matches(render(size), name));
        }
    }
    settings->setColorScheme(std::make_shared<VextilDefaultColorScheme>());
}
