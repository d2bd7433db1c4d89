// A host that ends while its upload is still unanswered: starts a send to HOST, trusting the
// PEM file's authorities, quits soon after the whole body has gone out, and after the application
// object has gone prints the name of every thread the process still has, one per line.
//
//     vextil_end_mid_transfer HOST AUTHORITY_PEM
#include <VextilToolkit/VextilRepository.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QSettings>
#include <QThread>
#include <QTimer>

#include <cstdio>

namespace {

QImage picture(int seed)
{
    QImage image(64, 80, QImage::Format_RGB32);
    image.fill(qRgb(seed * 30, 90, 160));
    return image;
}

void prepare(VextilRepository *store, const QString &host, const QString &authority)
{
    QFile pem(authority);
    pem.open(QIODevice::ReadOnly);
    store->setUploadHost(host);
    store->setExtraCertificateAuthorities({pem.readAll()});
    store->setAuthKey(QStringLiteral("test-key"));
    auto neutral = std::make_shared<QList<QImage>>(), smiling = std::make_shared<QList<QImage>>();
    for (int i = 0; i < 5; ++i)
        neutral->append(picture(i));
    for (int i = 5; i < 7; ++i)
        smiling->append(picture(i));
    store->setFaceImages(neutral);
    store->setFaceSmileImages(smiling);
}

QStringList threadNames()
{
    QStringList names;
    const QDir tasks(QStringLiteral("/proc/self/task"));
    for (const QString &task : tasks.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        QFile name(tasks.filePath(task + QStringLiteral("/comm")));
        if (name.open(QIODevice::ReadOnly))
            names.append(QString::fromLocal8Bit(name.readAll()).trimmed());
    }
    return names;
}

// The threads left once the process is down to its main one, or after a second: a thread Qt
// has joined still takes a moment to leave the system's list.
void printThreads()
{
    QStringList names = threadNames();
    for (int tries = 0; names.size() > 1 && tries < 100; ++tries) {
        QThread::msleep(10);
        names = threadNames();
    }
    for (const QString &name : names)
        std::printf("%s\n", qPrintable(name));
}

}  // namespace

int main(int argc, char **argv)
{
    if (argc != 3)
        return 2;
    {
        QCoreApplication app(argc, argv);
        QCoreApplication::setOrganizationName(QStringLiteral("VextilToolkitTests"));
        QSettings::setDefaultFormat(QSettings::IniFormat);
        QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, QDir::temp().filePath(
                               QStringLiteral("vextil-end-mid-transfer-%1").arg(QCoreApplication::applicationPid())));
        VextilRepository *store = VextilRepository::sharedInstance();
        prepare(store, QString::fromLocal8Bit(argv[1]), QString::fromLocal8Bit(argv[2]));
        bool answered = false;
        store->sendDataWithDataType(VextilDataTypeFace, [&answered](auto, auto) { answered = true; });
        // Once the whole body has gone out, a moment for the server to take it all in.
        QTimer poll;
        QObject::connect(&poll, &QTimer::timeout, &app, [&] {
            if (store->getProgress() >= 1.0 || answered) {
                poll.stop();
                QTimer::singleShot(500, &app, &QCoreApplication::quit);
            }
        });
        poll.start(20);
        QTimer::singleShot(20000, &app, &QCoreApplication::quit);
        app.exec();
        if (answered)
            std::printf("answered\n");  // the server was meant to keep silent
    }
    printThreads();
    return 0;
}
