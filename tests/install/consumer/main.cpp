#include <VextilToolkit/VextilConfirmModel.h>
#include <VextilToolkit/VextilConfirmModelDelegate.h>
#include <VextilToolkit/VextilFrameSource.h>
#include <VextilToolkit/VextilImageBuffer.h>
#include <VextilToolkit/VextilRepository.h>
#include <VextilToolkit/VextilToolkitSettings.h>
#include <VextilToolkit/VextilToolkitVersion.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTcpServer>

#include <atomic>
#include <cstdio>

// A delegate made by the host: the library finds its interface by a cast at call time, which
// only works when the interface's type information is the library's own.
class HostReview : public QObject, public VextilConfirmModelDelegate {
public:
    void setDocumentImage(const QImage &) override {}
    void setFaceImages(std::shared_ptr<QList<QImage>> images) override { received = images ? int(images->size()) : -1; }
    int received = 0;
};

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    const unsigned char bgrx[8] = {255, 0, 0, 0, 0, 0, 255, 0};
    const QImage image = VextilImageBuffer::imageFromSampleBuffer({bgrx, 8, 2, 1, 8});
    VextilRepository *store = VextilRepository::sharedInstance();
    store->setAuthKey(QStringLiteral("consumer"));
    store->setFaceImages(std::make_shared<QList<QImage>>(QList<QImage>{image, image}));

    HostReview review;
    VextilConfirmModel model;
    model.setDelegate(&review);
    model.getImages();

    // The library carries its translations: one call puts German in force.
    const bool german = VextilToolkitSettings::sharedInstance()->installTranslations(QLocale(QStringLiteral("de")))
                     && model.getAcceptButtonText() == QStringLiteral("Ja, senden");

    // The installed library takes its upload endpoint from the host's code only: the development
    // variables must not send this upload to the listener they name.
    QTcpServer listener;
    listener.listen(QHostAddress::LocalHost);
    qputenv("VEXTIL_UPLOAD_HOST", QStringLiteral("127.0.0.1:%1").arg(listener.serverPort()).toUtf8());
    store->setFaceSmileImages(std::make_shared<QList<QImage>>(QList<QImage>{image}));
    store->setUploadHost(QStringLiteral("127.0.0.1:1"));  // nobody listens there
    std::atomic<int> code{0};
    store->sendDataWithDataType(VextilDataTypeFace, [&](std::optional<QVariantMap>, std::optional<VextilError> error) {
        code = error ? error->code : -1;
    });
    QElapsedTimer waited;
    waited.start();
    while (code == 0 && waited.elapsed() < 20000)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    const bool environmentIgnored = code == 423 && !listener.hasPendingConnections();
    if (!environmentIgnored)
        std::printf("upload: code %d, the listener named by VEXTIL_UPLOAD_HOST %s\n", int(code),
                    listener.hasPendingConnections() ? "was reached" : "was not reached");

    // Nor can the environment put a recorded video in the camera's place.
    qputenv("VEXTIL_CAMERA_FILE", "/dev/null");
    const QString camera = VextilFrameSource::createDefault()->description();
    const bool cameraIsLive = camera == QStringLiteral("no camera") || camera.startsWith(QStringLiteral("camera: "));
    if (!cameraIsLive)
        std::printf("default frame source: %s\n", qPrintable(camera));

    const bool ok = german && image.pixel(0, 0) == qRgb(0, 0, 255) && image.pixel(1, 0) == qRgb(255, 0, 0)
                 && store->authKey() == QStringLiteral("consumer") && review.received == 2 && environmentIgnored
                 && cameraIsLive;
    std::printf("VextilToolkit %s: %s\n", VEXTIL_TOOLKIT_VERSION_STRING, ok ? "ok" : "WRONG");
    return ok ? 0 : 1;
}
