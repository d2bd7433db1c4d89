#include "UploadServer.h"

#include "MetaInfos.h"

#include <QByteArray>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStringList>
#include <QUuid>

#include <algorithm>

#include <cstdio>

namespace {

void answer(httplib::Response &response, int status, const QJsonObject &body)
{
    response.status = status;
    response.set_content(QJsonDocument(body).toJson(QJsonDocument::Compact).toStdString(), "application/json");
}

void fail(httplib::Response &response, int status, const QString &message)
{
    answer(response, status, {{QStringLiteral("error"), message}});
}

QString text(const std::string &s) { return QString::fromUtf8(s.data(), qsizetype(s.size())); }

}  // namespace

UploadServer::UploadServer(Options options) : m_options(std::move(options)) {}

bool UploadServer::start(std::string &error)
{
    if (!ServerCertificates::prepare(m_options.certificate, m_options.privateKey, m_options.storage, m_certificates,
                                     m_authorityPath, error))
        return false;
    m_server = std::make_unique<httplib::SSLServer>(m_certificates.certificate.get(), m_certificates.key.get());
    m_server->set_payload_max_length(m_options.maxBody);
    // A slow or stalled client holds a worker thread only this long.
    m_server->set_read_timeout(std::max(1, m_options.readTimeoutSeconds), 0);
    m_server->Post("/file", [this](const auto &request, auto &response) { handleUpload(request, response); });
    m_server->Get("/stats", [this](const auto &request, auto &response) { handleStats(request, response); });
    m_server->set_exception_handler([](const auto &, auto &response, std::exception_ptr) {
        fail(response, 500, QStringLiteral("internal error"));
    });
    m_server->set_logger([](const httplib::Request &request, const httplib::Response &response) {
        // A refusal says why, on the same line.
        std::printf("%s %s -> %d%s%s\n", request.method.c_str(), request.path.c_str(), response.status,
                    response.status >= 400 ? " " : "", response.status >= 400 ? response.body.c_str() : "");
        std::fflush(stdout);
    });
    m_port = m_options.port == 0 ? m_server->bind_to_any_port(m_options.host)
                                 : (m_server->bind_to_port(m_options.host, m_options.port) ? m_options.port : -1);
    if (m_port <= 0) {
        error = "cannot listen on " + m_options.host + ":" + std::to_string(m_options.port);
        return false;
    }
    return true;
}

void UploadServer::run() { m_server->listen_after_bind(); }

void UploadServer::stop()
{
    if (m_server)
        m_server->stop();
}

void UploadServer::handleStats(const httplib::Request &, httplib::Response &response)
{
    answer(response, 200, {{QStringLiteral("requests"), m_requests.load()}, {QStringLiteral("uploads"), m_uploads.load()}});
}

void UploadServer::handleUpload(const httplib::Request &request, httplib::Response &response)
{
    ++m_requests;
    if (m_options.fixedStatus != 0 && !m_options.location.empty())
        response.set_header("Location", m_options.location);
    if (m_options.fixedStatus != 0 && !m_options.fixedBody.empty()) {
        response.status = m_options.fixedStatus;
        return response.set_content(m_options.fixedBody, "text/plain");
    }
    if (m_options.fixedStatus != 0)
        return fail(response, m_options.fixedStatus, QStringLiteral("fixed status for testing"));
    if (!request.has_header("Authorization"))
        return fail(response, 401, QStringLiteral("no Authorization header"));
    if (request.get_header_value("Authorization") != m_options.key)
        return fail(response, 401, QStringLiteral("wrong Authorization key"));
    if (!request.is_multipart_form_data() || !request.has_file("META_INFOS"))
        return fail(response, 400, QStringLiteral("expected multipart/form-data with a META_INFOS field"));

    QString problem;
    const QStringList names = MetaInfos::namedFiles(request.get_file_value("META_INFOS").content, problem);
    if (!problem.isEmpty())
        return fail(response, 400, problem);
    for (const QString &name : names) {
        const auto part = request.files.find(name.toStdString());
        if (part == request.files.end() || part->second.filename != name.toStdString())
            return fail(response, 400, QStringLiteral("file %1 is named in META_INFOS but was not sent").arg(name));
    }

    const std::string token = QUuid::createUuid().toString(QUuid::Id128).toStdString();
    std::string folder;
    if (!store(request, token, folder))
        return fail(response, 500, QStringLiteral("the upload could not be stored"));
    ++m_uploads;
    std::printf("stored upload %s: %lld files in %s\n", token.c_str(), qlonglong(names.size()), folder.c_str());
    answer(response, 200, {{QStringLiteral("token"), text(token)}});
}

bool UploadServer::store(const httplib::Request &request, const std::string &token, std::string &folder)
{
    const QString name = QDateTime::currentDateTimeUtc().toString(QStringLiteral("yyyyMMdd-HHmmss-zzz-")) + text(token).left(8);
    const QDir dir(QDir(QString::fromStdString(m_options.storage)).absoluteFilePath(name));
    if (!QDir().mkpath(dir.path()))
        return false;
    folder = dir.path().toStdString();
    for (const auto &[field, part] : request.files) {
        const QString file = field == "META_INFOS" ? QStringLiteral("META_INFOS.json") : text(part.filename);
        if (!MetaInfos::isSafeName(file))
            continue;
        QFile out(dir.filePath(file));
        if (!out.open(QIODevice::WriteOnly) || out.write(part.content.data(), qint64(part.content.size())) != qint64(part.content.size()))
            return false;
    }
    return true;
}
