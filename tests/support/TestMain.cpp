// GoogleTest entry point inside a Qt application, so that queued calls to the GUI thread run
// when a test processes events.
#include <QApplication>
#include <QDir>
#include <QSettings>

#include <gtest/gtest.h>

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", qgetenv("QT_QPA_PLATFORM").isEmpty() ? QByteArray("offscreen")
                                                                     : qgetenv("QT_QPA_PLATFORM"));
    QApplication app(argc, argv);
    // Host settings (such as "isTest") go to a folder of this run, never the user's own.
    QCoreApplication::setOrganizationName(QStringLiteral("VextilToolkitTests"));
    QSettings::setDefaultFormat(QSettings::IniFormat);
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope,
                       QDir::temp().filePath(QStringLiteral("vextil-tests-%1").arg(QCoreApplication::applicationPid())));
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
