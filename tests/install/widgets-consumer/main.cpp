// widgets_consumer CLIP: captures with the clip as the camera through the Widgets face, accepts
// the review, and finds the capture in the store the core library holds; exits 0 when it did.
#include <VextilToolkit/VextilConfirmController.h>
#include <VextilToolkit/VextilFace.h>
#include <VextilToolkit/VextilRepository.h>
#include <VextilToolkit/VextilVideoFileSource.h>

#include <QApplication>
#include <QTimer>
#include <QWidget>

#include <cstdio>

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    if (argc != 2)
        return 64;
    const QString clip = QString::fromLocal8Bit(argv[1]);
    QWidget host;
    host.resize(390, 844);
    host.show();
    VextilFace *face = VextilFace::sharedInstance();
    face->setRootController(&host);
    face->presentTutorial(false);
    face->setFrameSourceFactory([clip] { return std::make_unique<VextilVideoFileSource>(clip, true); });

    int code = 1;
    QTimer review;  // the host's part: say yes once the review shows
    QObject::connect(&review, &QTimer::timeout, [&] {
        if (face->confirmController() && face->confirmController()->isVisible())
            face->confirmController()->didConfirm();
    });
    review.start(100);
    face->requestFace([&](bool success, std::optional<VextilError> error) {
        // The screens stored the capture in the core library's store, the one the host reads.
        const auto neutral = VextilRepository::sharedInstance()->getFaceImages();
        const auto smiling = VextilRepository::sharedInstance()->getFaceSmileImagess();
        std::printf("capture %s (%d); the store holds %lld neutral and %lld smiling images\n",
                    success ? "accepted" : "failed", error ? error->code : 0, qlonglong(neutral ? neutral->size() : 0),
                    qlonglong(smiling ? smiling->size() : 0));
        code = success && neutral && neutral->size() == 5 && smiling && smiling->size() == 2 ? 0 : 1;
        app.quit();
    });
    QTimer::singleShot(60000, &app, [&] { app.quit(); });
    app.exec();
    return code;
}
