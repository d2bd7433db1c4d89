#include "ReferenceServer.h"

#include <QDir>
#include <QRegularExpression>
#include <QTest>

ReferenceServer::ReferenceServer(const QStringList &extraArguments)
{
    m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    m_process.start(QStringLiteral(VEXTIL_UPLOAD_SERVER),
                    QStringList{"--port", "0", "--key", kKey, "--storage", m_storage.path()} + extraArguments);
    static const QRegularExpression listening(QStringLiteral("listening on https://[^:]+:(\\d+)/file"));
    static const QRegularExpression authority(QStringLiteral("certificate authority: (\\S+)"));
    const bool started = QTest::qWaitFor([&] {
        m_process.waitForReadyRead(50);
        m_output += m_process.readAllStandardOutput();
        const auto port = listening.match(QString::fromUtf8(m_output));
        if (port.hasMatch())
            m_port = port.captured(1).toInt();
        return m_port > 0 || m_process.state() == QProcess::NotRunning;
    }, 10000);
    if (!started)
        qWarning("the reference upload server did not start: %s", m_output.constData());
    m_authority = authority.match(QString::fromUtf8(m_output)).captured(1);
}

ReferenceServer::~ReferenceServer()
{
    m_process.terminate();
    if (!m_process.waitForFinished(5000))
        m_process.kill();
}

int ReferenceServer::logged(const QString &request)
{
    m_output += m_process.readAllStandardOutput();
    return int(QString::fromUtf8(m_output).count(request + QStringLiteral(" -> ")));
}

QStringList ReferenceServer::uploadFolders() const
{
    QStringList folders;
    for (const QString &name : QDir(m_storage.path()).entryList(QDir::Dirs | QDir::NoDotAndDotDot))
        folders.append(QDir(m_storage.path()).filePath(name));
    return folders;
}
