#include <VextilToolkit/VextilImageBuffer.h>
#include <VextilToolkit/VextilRepository.h>
#include <VextilToolkit/VextilToolkitVersion.h>

#include <cstdio>

int main()
{
    const unsigned char bgrx[8] = {255, 0, 0, 0, 0, 0, 255, 0};
    const QImage image = VextilImageBuffer::imageFromSampleBuffer({bgrx, 8, 2, 1, 8});
    VextilRepository::sharedInstance()->setAuthKey(QStringLiteral("consumer"));
    const bool ok = image.pixel(0, 0) == qRgb(0, 0, 255) && image.pixel(1, 0) == qRgb(255, 0, 0)
                 && VextilRepository::sharedInstance()->authKey() == QStringLiteral("consumer");
    std::printf("VextilToolkit %s: %s\n", VEXTIL_TOOLKIT_VERSION_STRING, ok ? "ok" : "WRONG");
    return ok ? 0 : 1;
}
