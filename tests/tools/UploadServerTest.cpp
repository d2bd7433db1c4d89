#include "ReferenceServer.h"

#include <QEventLoop>
#include <QHttpMultiPart>
#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QSslConfiguration>

#include <gtest/gtest.h>

namespace {

struct Answer {
    int status = 0;
    QJsonObject json;
};

class UploadServerTest : public ::testing::Test {
protected:
    // Posts form fields (name -> (filename, content); no filename for plain fields).
    Answer post(const QByteArray &key, const QList<std::tuple<QString, QString, QByteArray>> &fields)
    {
        auto *form = new QHttpMultiPart(QHttpMultiPart::FormDataType);
        for (const auto &[name, filename, content] : fields) {
            QHttpPart part;
            const QString disposition = filename.isEmpty() ? QString("form-data; name=\"%1\"").arg(name)
                                                           : QString("form-data; name=\"%1\"; filename=\"%2\"").arg(name, filename);
            part.setHeader(QNetworkRequest::ContentDispositionHeader, disposition);
            part.setBody(content);
            form->append(part);
        }
        QNetworkRequest request(url("/file"));
        request.setRawHeader("Authorization", key);
        QNetworkReply *reply = network.post(request, form);
        form->setParent(reply);
        return wait(reply);
    }

    Answer wait(QNetworkReply *reply)
    {
        QEventLoop loop;
        QObject::connect(reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
        loop.exec();
        Answer answer{reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt(),
                      QJsonDocument::fromJson(reply->readAll()).object()};
        reply->deleteLater();
        return answer;
    }

    QNetworkRequest url(const QString &path)
    {
        QNetworkRequest request(QUrl("https://" + server.host() + path));
        QSslConfiguration tls = QSslConfiguration::defaultConfiguration();
        tls.addCaCertificates(QSslCertificate::fromPath(server.authorityFile()));
        request.setSslConfiguration(tls);
        return request;
    }

    ReferenceServer server;
    QNetworkAccessManager network;
    const QByteArray meta = R"({"files":[{"name":"file_1.jpeg"}],"extra_info":{"foo":"foo"}})";
};

TEST_F(UploadServerTest, StoresACompleteUploadAndRefusesBadOnesWithJsonErrors)
{
    ASSERT_TRUE(server.isRunning());
    const Answer ok = post(ReferenceServer::kKey, {{"META_INFOS", "", meta}, {"file_1.jpeg", "file_1.jpeg", "JPEG"}});
    EXPECT_EQ(ok.status, 200);
    EXPECT_EQ(ok.json.value("token").toString().size(), 32);

    const Answer wrongKey = post("nope", {{"META_INFOS", "", meta}, {"file_1.jpeg", "file_1.jpeg", "JPEG"}});
    EXPECT_EQ(wrongKey.status, 401);
    EXPECT_FALSE(wrongKey.json.value("error").toString().isEmpty());

    EXPECT_EQ(post(ReferenceServer::kKey, {{"META_INFOS", "", meta}}).status, 400) << "a named file is missing";
    EXPECT_EQ(post(ReferenceServer::kKey, {{"META_INFOS", "", "{not json"}}).status, 400);
    EXPECT_EQ(post(ReferenceServer::kKey, {{"file_1.jpeg", "file_1.jpeg", "JPEG"}}).status, 400) << "no META_INFOS";
    const QByteArray escape = R"({"files":[{"name":"../../etc/passwd"}]})";
    EXPECT_EQ(post(ReferenceServer::kKey, {{"META_INFOS", "", escape}, {"../../etc/passwd", "../../etc/passwd", "x"}}).status, 400);

    QNetworkRequest plain = url("/file");
    plain.setRawHeader("Authorization", ReferenceServer::kKey);
    plain.setHeader(QNetworkRequest::ContentTypeHeader, "text/plain");
    EXPECT_EQ(wait(network.post(plain, QByteArray("hello"))).status, 400);

    const Answer stats = wait(network.get(url("/stats")));
    EXPECT_EQ(stats.json.value("uploads").toInt(), 1) << "only the complete upload was stored";
    EXPECT_EQ(stats.json.value("requests").toInt(), 7);
    EXPECT_EQ(server.uploadFolders().size(), 1);
}

}  // namespace
