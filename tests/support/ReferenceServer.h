#pragma once

#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>

// The reference upload server as a child process on a free loopback port, storing into a
// temporary folder; stopped when this object goes.
class ReferenceServer {
public:
    // Starts the server with the key "test-key" and any extra arguments (e.g. --status 502).
    explicit ReferenceServer(const QStringList &extraArguments = {});
    ~ReferenceServer();

    bool isRunning() const { return m_port > 0; }
    // host:port for the upload endpoint override.
    QString host() const { return QStringLiteral("127.0.0.1:%1").arg(m_port); }
    // The certificate authority the server made for itself; empty when given a certificate.
    QString authorityFile() const { return m_authority; }
    // How many requests of this kind the server has logged, e.g. "POST /file".
    int logged(const QString &request);
    // Folders holding one stored upload each.
    QStringList uploadFolders() const;

    static constexpr const char *kKey = "test-key";

private:
    QTemporaryDir m_storage;
    QProcess m_process;
    QByteArray m_output;
    QString m_authority;
    int m_port = 0;
};
