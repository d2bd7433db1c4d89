#include "core/VextilPortraitLock.h"

#include <QtGlobal>

#if defined(Q_OS_ANDROID)
#include <QJniObject>
#include <QVariant>
#include <QtCore/qcoreapplication_platform.h>
#endif

namespace {

int holders = 0;

#if defined(Q_OS_ANDROID)
constexpr int kScreenOrientationPortrait = 1;  // ActivityInfo.SCREEN_ORIENTATION_PORTRAIT
int hostOrientation = -1;                       // ActivityInfo.SCREEN_ORIENTATION_UNSPECIFIED

// Activity calls belong on Android's own main thread.
void requestOrientation(bool portrait)
{
    QNativeInterface::QAndroidApplication::runOnAndroidMainThread([portrait] {
        QJniObject activity(QNativeInterface::QAndroidApplication::context());
        if (!activity.isValid())
            return QVariant();
        if (portrait)
            hostOrientation = activity.callMethod<jint>("getRequestedOrientation");
        activity.callMethod<void>("setRequestedOrientation", "(I)V",
                                  portrait ? kScreenOrientationPortrait : hostOrientation);
        return QVariant();
    });
}
#else
void requestOrientation(bool) {}
#endif

}  // namespace

void VextilPortraitLock::acquire()
{
    if (holders++ == 0)
        requestOrientation(true);
}

void VextilPortraitLock::release()
{
    if (holders > 0 && --holders == 0)
        requestOrientation(false);
}

bool VextilPortraitLock::isHeld() { return holders > 0; }
