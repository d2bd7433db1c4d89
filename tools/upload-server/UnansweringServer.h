#pragma once

#include "ServerCertificates.h"

#include <QByteArray>
#include <QHash>
#include <QSslServer>

#include <string>

// HTTPS server that reads each request whole and never answers it: it closes the connection at
// once (a backend that crashes after reading), closes it after a while (a load balancer whose
// idle timer runs out) or holds it open for as long as the client stays. Each request it has
// read is logged as "METHOD PATH -> no answer (...)", so a client's re-sends can be counted.
class UnansweringServer : public QObject {
public:
    enum class Mode { Close, GiveUp, Never };
    struct Options {
        QString host = QStringLiteral("127.0.0.1");
        int port = 8443;          // 0 picks a free port
        Mode mode = Mode::Close;
        int giveUpSeconds = 0;    // GiveUp only
    };

    // Reads the mode from "close", "never" or a number of seconds; false when it is none of these.
    static bool parseMode(const QString &text, Options &options);

    UnansweringServer(Options options, const ServerCertificates &certificates);

    // Binds; false with a reason when it cannot.
    bool start(std::string &error);
    int port() const { return m_port; }

private:
    void accept();
    void read(QSslSocket *socket);
    void leaveUnanswered(QSslSocket *socket, const QByteArray &requestLine);

    Options m_options;
    QSslServer m_server;
    QHash<QSslSocket *, QByteArray> m_received;
    int m_port = 0;
};
