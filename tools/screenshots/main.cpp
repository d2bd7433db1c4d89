// vextil_screenshots [--out DIR] [--locale NAME]: renders the toolkit's screens offscreen at 390x844 and
// 1080x1920 (phones), 1280x800 (a desktop window) and 844x390 (a phone on its side) and saves
// one PNG per screen and state. The camera picture is a frame of the sample clip. With --locale
// the texts are in that language and the file names end in the locale's name.

#include <VextilToolkit/VextilConfirmController.h>
#include <VextilToolkit/VextilDefaultColorScheme.h>
#include <VextilToolkit/VextilFaceCameraViewController.h>
#include <VextilToolkit/VextilFrameSource.h>
#include <VextilToolkit/VextilRepository.h>
#include <VextilToolkit/VextilToolkitSettings.h>
#include <VextilToolkit/VextilVideoFileReader.h>

#include "capture/VextilCameraWatchdog.h"
#include "widgets/capture/VextilFaceCameraView.h"
#include "widgets/capture/VextilFaceProgressBoxView.h"
#include "core/VextilTexts.h"
#include "widgets/tutorial/VextilTutorialFace.h"
#include "widgets/ui/NavigationBarView.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QPainter>
#include <QTest>

#include <cstdio>

namespace {

// A camera that is there and sends nothing: the screenshots put the pictures in themselves.
class StillCamera : public VextilFrameSource {
public:
    void start() override { m_running = true; }
    void stop() override { m_running = false; }
    bool isRunning() const override { return m_running; }
    QString description() const override { return QStringLiteral("still camera"); }
    bool isAvailable() const override { return true; }

private:
    bool m_running = false;
};

// The camera screen as the flow shows it, over a host window of the given size, with a frame
// of the clip in its preview.
struct CameraScreen {
    QWidget screen;
    VextilFaceCameraViewController *controller;
    VextilFaceCameraView *camera;
    VextilFaceProgressBoxView *box;

    CameraScreen(QSize size, const QImage &frame)
    {
        screen.resize(size);
        screen.show();
        controller = new VextilFaceCameraViewController;
        controller->setPresentTutorial(false);
        controller->setFrameSource(std::make_unique<StillCamera>());
        VextilBaseViewController::present(&screen, controller, false);
        settle();
        camera = controller->faceCameraView();
        box = controller->faceProgressBoxView();
        camera->videoPreviewLayer()->setFrame(frame);
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

// The camera picture as a user who must be told something films it: the frame moved, scaled,
// darkened or blurred by movement, over a blur of itself where it no longer reaches.
QImage guidedPicture(const QImage &frame, const QString &instruction)
{
    QImage picture = frame.scaled(frame.size() / 16, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
                         .scaled(frame.size(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    const QPointF middle(frame.width() / 2.0, frame.height() / 2.0);
    const auto drawScaled = [&](double scale, double sideways) {
        painter.save();
        painter.translate(middle + QPointF(sideways * frame.width(), 0));
        painter.scale(scale, scale);
        painter.drawImage(-middle, frame);
        painter.restore();
    };
    if (instruction == QLatin1String("Move closer"))
        drawScaled(0.55, 0);
    else if (instruction == QLatin1String("Move back"))
        drawScaled(1.5, 0);
    else if (instruction == QLatin1String("Center your face"))
        drawScaled(1, 0.3);
    else if (instruction == QLatin1String("Hold still")) {
        for (int step = 0; step < 5; ++step) {
            painter.setOpacity(1.0 / (step + 1));
            drawScaled(1, 0.012 * step);
        }
    } else {
        drawScaled(1, 0);
        painter.fillRect(picture.rect(), QColor(0, 0, 0, instruction == QLatin1String("Find more light") ? 190 : 0));
    }
    return picture;
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
    for (const QSize size : {QSize(390, 844), QSize(1080, 1920), QSize(1280, 800), QSize(844, 390)}) {
        const QString suffix = QStringLiteral("-%1x%2").arg(size.width()).arg(size.height()) + language;
        CameraScreen looking(size, neutral);
        ok &= save(looking.screen, out, QStringLiteral("camera-looking") + suffix);

        CameraScreen tutorial(size, neutral);
        tutorial.controller->presentTutorialPopUp();
        CameraScreen::settle();
        ok &= save(tutorial.screen, out, QStringLiteral("tutorial") + suffix);

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

        // A face the capture cannot use yet, and what the user is told to do about it.
        for (const char *instruction : {"Move closer", "Move back", "Center your face", "Find more light", "Hold still"}) {
            CameraScreen guided(size, guidedPicture(neutral, QLatin1String(instruction)));
            guided.box->updateInstructionsLabelWithText(VextilTexts::tr(instruction));
            CameraScreen::settle();
            const QString name = QString::fromLatin1(instruction).toLower().replace(u' ', u'-');
            ok &= save(guided.screen, out, QStringLiteral("camera-") + name + suffix);
        }

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
