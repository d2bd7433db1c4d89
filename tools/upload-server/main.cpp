// vextil_upload_server: the reference upload server. See --help.

#include "UnansweringServer.h"
#include "UploadServer.h"

#include <QCommandLineParser>
#include <QCoreApplication>

#include <csignal>
#include <cstdio>

namespace {

UploadServer *running = nullptr;

void stopOnSignal(int) { if (running) running->stop(); }

void announce(const std::string &host, int port, const std::string &authority, const std::string &storage)
{
    std::printf("listening on https://%s:%d/file\n", host.c_str(), port);
    if (!authority.empty())
        std::printf("certificate authority: %s\n", authority.c_str());
    std::printf("storage: %s\n", storage.c_str());
    std::fflush(stdout);
}

// Serves requests that are read and never answered, until the process is ended.
int leaveUnanswered(QCoreApplication &app, const UploadServer::Options &settings, const QString &mode)
{
    UnansweringServer::Options options{QString::fromStdString(settings.host), settings.port};
    if (!UnansweringServer::parseMode(mode, options)) {
        std::fprintf(stderr, "error: --no-answer takes close, never or a number of seconds\n");
        return 2;
    }
    ServerCertificates certificates;
    std::string authority, error;
    if (!ServerCertificates::prepare(settings.certificate, settings.privateKey, settings.storage, certificates, authority,
                                     error)) {
        std::fprintf(stderr, "error: %s\n", error.c_str());
        return 1;
    }
    UnansweringServer server(options, certificates);
    if (!server.start(error)) {
        std::fprintf(stderr, "error: %s\n", error.c_str());
        return 1;
    }
    announce(settings.host, server.port(), authority, settings.storage);
    return app.exec();
}

}  // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QCommandLineParser options;
    options.setApplicationDescription(QStringLiteral(
        "Reference upload server: HTTPS POST /file, as the toolkit uploads. Listens on loopback; makes its own "
        "certificate authority unless given a certificate."));
    options.addHelpOption();
    const auto add = [&options](const char *name, const char *description, const char *value, const char *fallback) {
        options.addOption({QString::fromLatin1(name), QString::fromLatin1(description), QString::fromLatin1(value),
                           QString::fromLatin1(fallback)});
    };
    add("host", "Address to listen on.", "address", "127.0.0.1");
    add("port", "Port to listen on; 0 picks a free one.", "port", "8443");
    add("key", "Authorization key the uploads must carry (required).", "key", "");
    add("storage", "Folder that receives one folder per upload.", "dir", "uploads");
    add("cert", "Server certificate (PEM); omitted: a new authority signs one.", "file", "");
    add("cert-key", "Private key of --cert (PEM).", "file", "");
    add("max-body", "Largest accepted body in bytes; larger ones get 413.", "bytes", "67108864");
    add("read-timeout", "Seconds a client may leave the server waiting for the rest of a request.", "seconds", "10");
    add("status", "Answer every upload with this HTTP status (testing).", "code", "0");
    add("body", "Body of the --status answers, as plain text (testing).", "text", "");
    add("location", "Location header of the --status answers, e.g. to redirect (testing).", "url", "");
    add("no-answer",
        "Read each request whole and never answer it (testing): close the connection at once (close), after this many "
        "seconds (a number), or never (never).", "mode", "");
    options.process(app);

    UploadServer::Options settings;
    settings.host = options.value(QStringLiteral("host")).toStdString();
    settings.port = options.value(QStringLiteral("port")).toInt();
    settings.key = options.value(QStringLiteral("key")).toStdString();
    settings.storage = options.value(QStringLiteral("storage")).toStdString();
    settings.certificate = options.value(QStringLiteral("cert")).toStdString();
    settings.privateKey = options.value(QStringLiteral("cert-key")).toStdString();
    settings.maxBody = options.value(QStringLiteral("max-body")).toULongLong();
    settings.readTimeoutSeconds = options.value(QStringLiteral("read-timeout")).toInt();
    settings.fixedStatus = options.value(QStringLiteral("status")).toInt();
    settings.fixedBody = options.value(QStringLiteral("body")).toStdString();
    settings.location = options.value(QStringLiteral("location")).toStdString();
    if (settings.key.empty()) {
        std::fprintf(stderr, "error: --key is required\n");
        return 2;
    }

    if (options.isSet(QStringLiteral("no-answer")))
        return leaveUnanswered(app, settings, options.value(QStringLiteral("no-answer")));

    UploadServer server(settings);
    std::string error;
    if (!server.start(error)) {
        std::fprintf(stderr, "error: %s\n", error.c_str());
        return 1;
    }
    announce(settings.host, server.port(), server.authorityPath(), settings.storage);

    running = &server;
    std::signal(SIGINT, stopOnSignal);
    std::signal(SIGTERM, stopOnSignal);
    server.run();
    return 0;
}
