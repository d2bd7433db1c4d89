// vextil_screenshots [--out DIR] [--locale NAME]: renders the toolkit's screen parts offscreen at 390x844 and
// 1080x1920 and saves one PNG per view and state. The camera picture is a frame of the sample
// clip; the camera screen is assembled the way its controller lays it out. With --locale the
// texts are in that language and the file names end in the locale's name.

#include <VextilToolkit/VextilConfirmController.h>
#include <VextilToolkit/VextilDefaultColorScheme.h>
#include <VextilToolkit/VextilRepository.h>
#include <VextilToolkit/VextilToolkitSettings.h>
#include <VextilToolkit/VextilVideoFileReader.h>

#include "capture/VextilCameraWatchdog.h"
#include "capture/VextilFaceCameraView.h"
#include "capture/VextilFaceProgressBoxView.h"
#include "core/VextilTexts.h"
#include "tutorial/VextilTutorialFace.h"
#include "ui/NavigationBarView.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QTest>

#include <cstdio>

namespace {

// The camera screen's three parts in their places: bar 9% of the height, progress box 150 at
// the bottom, the camera picture between them.
struct CameraScreen {
    QWidget screen;
    NavigationBarView *bar;
    VextilFaceCameraView *camera;
    VextilFaceProgressBoxView *box;

    CameraScreen(QSize size, const QImage &frame)
    {
        screen.resize(size);
        QPalette palette;
        palette.setColor(QPalette::Window, Qt::black);
        screen.setPalette(palette);
        screen.setAutoFillBackground(true);
        bar = new NavigationBarView(VextilTexts::tr("Register selfie"), true, &screen);
        for (auto set : {&NavigationBarView::setTitleLabelTintColor, &NavigationBarView::setBackButtonTintColor,
                         &NavigationBarView::setHelpButtonTintColor})
            (bar->*set)(Qt::white);
        camera = new VextilFaceCameraView(&screen);
        box = new VextilFaceProgressBoxView(&screen);
        const int barHeight = int(size.height() * 0.09);
        bar->setGeometry(0, 0, size.width(), barHeight);
        box->setGeometry(0, size.height() - 150, size.width(), 150);
        camera->setGeometry(0, barHeight, size.width(), size.height() - 150 - barHeight);
        camera->videoPreviewLayer()->setFrame(frame);
        box->updateInstructionsLabelWithText(VextilTexts::tr("Looking for face"));
        screen.show();
        settle();
    }

    static void settle() { QTest::qWait(650); }  // queued updates and the 0.5 s bar animation
};

bool save(QWidget &widget, const QString &dir, const QString &name)
{
    const QString path = QDir(dir).filePath(name + QStringLiteral(".png"));
    const bool saved = widget.grab().save(path);
    std::printf("%s %s\n", saved ? "saved" : "FAILED", qPrintable(path));
    return saved;
}

QImage clipFrame(int index)
{
    VextilVideoFileReader reader;
    if (!reader.open(QStringLiteral(VEXTIL_SELFIE_CLIP)))
        return {};
    for (auto frame = reader.readFrame(); frame; frame = reader.readFrame())
        if (frame->index == index)
            return frame->image;
    return {};
}

}  // namespace

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    QCommandLineParser options;
    options.addHelpOption();
    options.addOption({QStringLiteral("out"), QStringLiteral("Folder for the PNG files."), QStringLiteral("dir"),
                       QStringLiteral("screenshots")});
    options.addOption(
        {QStringLiteral("locale"), QStringLiteral("Language of the texts (de, es, pt_BR)."), QStringLiteral("name")});
    options.process(app);
    QString language;
    if (options.isSet(QStringLiteral("locale"))) {
        const QLocale locale(options.value(QStringLiteral("locale")));
        if (!VextilToolkitSettings::sharedInstance()->installTranslations(locale)) {
            std::fprintf(stderr, "no translation for %s\n", qPrintable(locale.name()));
            return 1;
        }
        language = u'-' + options.value(QStringLiteral("locale"));
    }
    const QString out = options.value(QStringLiteral("out"));
    QDir().mkpath(out);

    const QImage neutral = clipFrame(40), smiling = clipFrame(120);
    bool ok = true;
    for (const QSize size : {QSize(390, 844), QSize(1080, 1920)}) {
        const QString suffix = QStringLiteral("-%1x%2").arg(size.width()).arg(size.height()) + language;
        CameraScreen looking(size, neutral);
        ok &= save(looking.screen, out, QStringLiteral("camera-looking") + suffix);

        CameraScreen collecting(size, neutral);
        collecting.camera->changeMaskState();
        collecting.box->updateInstructionsLabelWithText(VextilTexts::tr("Checking your face"));
        collecting.box->updateProgress(0.6);
        CameraScreen::settle();
        ok &= save(collecting.screen, out, QStringLiteral("camera-collecting") + suffix);

        // A user smiling before being asked: the capture waits for a relaxed face.
        CameraScreen relax(size, smiling);
        relax.box->updateInstructionsLabelWithText(VextilTexts::tr("Relax your face"));
        CameraScreen::settle();
        ok &= save(relax.screen, out, QStringLiteral("camera-relax") + suffix);

        // No camera at all: nothing to preview, and the screen says so.
        CameraScreen missing(size, QImage());
        missing.box->updateInstructionsLabelWithText(
            VextilCameraWatchdog::message(VextilCameraWatchdog::Health::NoCamera));
        CameraScreen::settle();
        ok &= save(missing.screen, out, QStringLiteral("camera-no-camera") + suffix);

        CameraScreen smile(size, smiling);
        smile.camera->changeMaskState();
        smile.camera->isPopupHidden(false);
        smile.box->updateInstructionsLabelWithText(VextilTexts::tr("Checking your face"));
        smile.box->isProgressBarHidden(true);
        CameraScreen::settle();
        ok &= save(smile.screen, out, QStringLiteral("camera-smile") + suffix);

        auto *tutorial = new VextilTutorialFace(&looking.screen);
        tutorial->setGeometry(looking.screen.rect());
        tutorial->show();
        CameraScreen::settle();
        ok &= save(looking.screen, out, QStringLiteral("tutorial") + suffix);

        QWidget review;
        review.resize(size.width(), int(size.height() * 0.09));
        review.setStyleSheet(QStringLiteral("background: white"));
        NavigationBarView bar(VextilTexts::tr("Send selfie"), false, &review);
        VextilDefaultColorScheme scheme;
        bar.setBackButtonTintColor(scheme.backButtonColor());
        bar.setTitleLabelTintColor(scheme.navigationTitleColor());
        bar.setGeometry(review.rect());
        review.show();
        CameraScreen::settle();
        ok &= save(review, out, QStringLiteral("navigation-bar") + suffix);

        // The review screen as the flow shows it, over a host window, with a capture in the store.
        auto *store = VextilRepository::sharedInstance();
        const QImage portrait = neutral.copy(0, 69, neutral.width(), 1141);  // what a phone view shows
        const QImage smilingPortrait = smiling.copy(0, 69, smiling.width(), 1141);
        store->setFaceImages(std::make_shared<QList<QImage>>(5, portrait));
        store->setFaceSmileImages(std::make_shared<QList<QImage>>(2, smilingPortrait));
        QWidget host;
        host.resize(size);
        host.show();
        auto *confirm = new VextilConfirmController;
        confirm->setModel(new VextilConfirmModel);
        VextilBaseViewController::present(&host, confirm, false);
        CameraScreen::settle();
        ok &= save(host, out, QStringLiteral("review") + suffix);
    }
    return ok ? 0 : 1;
}
