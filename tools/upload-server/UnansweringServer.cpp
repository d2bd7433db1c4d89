#include "UnansweringServer.h"

#include <QHostAddress>
#include <QSslConfiguration>
#include <QSslKey>
#include <QTimer>

#include <openssl/pem.h>

#include <cstdio>

namespace {

QByteArray pemOf(X509 *certificate)
{
    BIO *bio = BIO_new(BIO_s_mem());
    PEM_write_bio_X509(bio, certificate);
    char *data = nullptr;
    const long size = BIO_get_mem_data(bio, &data);
    QByteArray pem(data, size);
    BIO_free(bio);
    return pem;
}

QSslKey keyOf(EVP_PKEY *key)
{
    BIO *bio = BIO_new(BIO_s_mem());
    PEM_write_bio_PrivateKey(bio, key, nullptr, nullptr, 0, nullptr, nullptr);
    char *data = nullptr;
    const long size = BIO_get_mem_data(bio, &data);
    const QByteArray pem(data, size);
    BIO_free(bio);
    return QSslKey(pem, EVP_PKEY_base_id(key) == EVP_PKEY_EC ? QSsl::Ec : QSsl::Rsa);
}

// The length of a whole request in `received`, or -1 while its head or body is incomplete.
qsizetype requestLength(const QByteArray &received)
{
    const qsizetype headEnd = received.indexOf("\r\n\r\n");
    if (headEnd < 0)
        return -1;
    qsizetype bodyLength = 0;
    for (const QByteArray &line : received.left(headEnd).split('\n')) {
        const qsizetype colon = line.indexOf(':');
        if (colon > 0 && line.left(colon).trimmed().compare("content-length", Qt::CaseInsensitive) == 0)
            bodyLength = line.mid(colon + 1).trimmed().toLongLong();
    }
    const qsizetype whole = headEnd + 4 + bodyLength;
    return received.size() >= whole ? whole : -1;
}

}  // namespace

bool UnansweringServer::parseMode(const QString &text, Options &options)
{
    bool isNumber = false;
    const int seconds = text.toInt(&isNumber);
    if (text == QLatin1String("close"))
        options.mode = Mode::Close;
    else if (text == QLatin1String("never"))
        options.mode = Mode::Never;
    else if (isNumber && seconds > 0)
        options = {options.host, options.port, Mode::GiveUp, seconds};
    else
        return false;
    return true;
}

UnansweringServer::UnansweringServer(Options options, const ServerCertificates &certificates)
    : m_options(std::move(options))
{
    QSslConfiguration tls = QSslConfiguration::defaultConfiguration();
    tls.setLocalCertificate(QSslCertificate(pemOf(certificates.certificate.get())));
    tls.setPrivateKey(keyOf(certificates.key.get()));
    tls.setPeerVerifyMode(QSslSocket::VerifyNone);
    m_server.setSslConfiguration(tls);
    connect(&m_server, &QTcpServer::pendingConnectionAvailable, this, &UnansweringServer::accept);
}

bool UnansweringServer::start(std::string &error)
{
    if (!m_server.listen(QHostAddress(m_options.host), quint16(m_options.port))) {
        error = "cannot listen on " + m_options.host.toStdString() + ":" + std::to_string(m_options.port);
        return false;
    }
    m_port = m_server.serverPort();
    return true;
}

void UnansweringServer::accept()
{
    while (auto *socket = static_cast<QSslSocket *>(m_server.nextPendingConnection())) {
        connect(socket, &QIODevice::readyRead, this, [this, socket] { read(socket); });
        connect(socket, &QAbstractSocket::disconnected, this, [this, socket] {
            m_received.remove(socket);
            socket->deleteLater();
        });
        read(socket);  // bytes may have come with the handshake
    }
}

void UnansweringServer::read(QSslSocket *socket)
{
    QByteArray &received = m_received[socket];
    received += socket->readAll();
    const qsizetype length = requestLength(received);
    if (length < 0)
        return;
    const QByteArray requestLine = received.left(received.indexOf("\r\n"));
    received.remove(0, length);
    leaveUnanswered(socket, requestLine);
}

void UnansweringServer::leaveUnanswered(QSslSocket *socket, const QByteArray &requestLine)
{
    const QList<QByteArray> words = requestLine.split(' ');
    const QByteArray request = words.size() >= 2 ? words[0] + ' ' + words[1] : requestLine;
    switch (m_options.mode) {
    case Mode::Close:
        std::printf("%s -> no answer (closed)\n", request.constData());
        socket->abort();  // as a process that dies: no TLS goodbye
        break;
    case Mode::GiveUp:
        std::printf("%s -> no answer (closing in %d s)\n", request.constData(), m_options.giveUpSeconds);
        QTimer::singleShot(m_options.giveUpSeconds * 1000, socket, [socket] { socket->abort(); });
        break;
    case Mode::Never:
        std::printf("%s -> no answer (held open)\n", request.constData());
        break;
    }
    std::fflush(stdout);
}
