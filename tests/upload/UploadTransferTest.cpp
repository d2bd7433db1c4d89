#include <VextilToolkit/VextilRepository.h>

#include "AliveGuard.h"
#include "ReferenceServer.h"
#include "upload/VextilServerTrust.h"
#include "upload/VextilUploadEndpoint.h"
#ifdef VEXTIL_ENV_OVERRIDES
#include "upload/VextilEnvironmentOverrides.h"
#endif
#include "TestCertificates.h"
#include "TestImages.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QMutex>
#include <QProcess>
#include <QRegularExpression>
#include <QSettings>
#include <QSslKey>
#include <QSslSocket>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>
#include <QThread>

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace {

// What a send delivered, gathered from whichever thread the callback ran on.
struct Delivery {
    QMutex mutex;
    int calls = 0;
    std::optional<QVariantMap> answer;
    std::optional<VextilError> error;
    QThread *thread = nullptr;

    VextilRepository::SendCallback callback()
    {
        return [this](std::optional<QVariantMap> a, std::optional<VextilError> e) {
            QMutexLocker lock(&mutex);
            ++calls;
            answer = std::move(a);
            error = std::move(e);
            thread = QThread::currentThread();
        };
    }
    int callCount()
    {
        QMutexLocker lock(&mutex);
        return calls;
    }
    int code()
    {
        QMutexLocker lock(&mutex);
        return error ? error->code : 0;
    }
};

QImage portrait(int seed)
{
    QImage image(120, 160, QImage::Format_RGB32);
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            image.setPixel(x, y, qRgb((x * 2 + seed * 40) % 256, (y + seed * 13) % 256, (x + y) % 256));
    return image;
}

QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

class UploadTransferTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        store->resetAllImages();
        store->setAuthKey(QString::fromLatin1(ReferenceServer::kKey));
        auto neutral = std::make_shared<QList<QImage>>(), smiling = std::make_shared<QList<QImage>>();
        for (int i = 0; i < 5; ++i)
            neutral->append(portrait(i));
        for (int i = 5; i < 7; ++i)
            smiling->append(portrait(i));
        store->setFaceImages(neutral);
        store->setFaceSmileImages(smiling);
        store->setError(std::nullopt);
        QSettings().setValue("isTest", false);
        store->setTransferTimeout(std::chrono::milliseconds(0));
        store->setPinnedPublicKeys({});
    }

    // Points uploads at a server, as a host does in code, trusting the PEM file's authorities
    // besides the system's.
    void pointAt(const QString &host, const QString &authority = {})
    {
        store->setUploadHost(host);
        ASSERT_TRUE(store->setExtraCertificateAuthorities(authority.isEmpty() ? QList<QByteArray>() : QList{readFile(authority)}));
    }

    // Sends the face data and waits for the callback, then a little longer, where a second
    // call would show.
    static void sendAndWait(Delivery &delivery)
    {
        VextilRepository::sharedInstance()->sendDataWithDataType(VextilDataTypeFace, delivery.callback());
        EXPECT_TRUE(QTest::qWaitFor([&] { return delivery.callCount() > 0; }, 20000)) << "no callback";
        QTest::qWait(50);
        EXPECT_EQ(delivery.callCount(), 1);
    }

    VextilRepository *store = VextilRepository::sharedInstance();
};

TEST_F(UploadTransferTest, AFaceUploadArrivesIntactAndIsAnsweredOnTheNetworkThread)
{
    ReferenceServer server;
    ASSERT_TRUE(server.isRunning());
    pointAt(server.host(), server.authorityFile());
    Delivery delivery;
    sendAndWait(delivery);

    ASSERT_FALSE(delivery.error.has_value()) << delivery.error->code;
    ASSERT_TRUE(delivery.answer.has_value());
    EXPECT_EQ(delivery.answer->value("token").toString().size(), 32);
    EXPECT_EQ(store->resultData(), delivery.answer);
    EXPECT_NE(delivery.thread, QThread::currentThread());
    EXPECT_DOUBLE_EQ(store->getProgress(), 1.0);

    const QStringList folders = server.uploadFolders();
    ASSERT_EQ(folders.size(), 1);
    const QDir upload(folders.first());
    for (int i = 0; i < 7; ++i) {
        const QImage &captured = i < 5 ? store->getFaceImages()->at(i) : store->getFaceSmileImagess()->at(i - 5);
        EXPECT_EQ(readFile(upload.filePath(QStringLiteral("file_%1.jpeg").arg(i + 1))), encodeJpeg(captured, 100)) << i + 1;
    }
    EXPECT_EQ(readFile(upload.filePath("META_INFOS.json")),
              VextilRepository::jsonStringFromDict(store->mountMetaInfoWithDataType(VextilDataTypeFace)).toUtf8());
}

TEST_F(UploadTransferTest, HttpStatusesMapToToolkitErrors)
{
    for (const auto &[status, code] : {std::pair{402, 422}, {502, 422}, {500, 1500}, {201, 1500}, {404, 1500}}) {
        SCOPED_TRACE(status);
        ReferenceServer server({"--status", QString::number(status)});
        pointAt(server.host(), server.authorityFile());
        Delivery delivery;
        sendAndWait(delivery);
        EXPECT_EQ(delivery.code(), code);
        EXPECT_FALSE(delivery.answer.has_value());
        EXPECT_EQ(store->error()->code, code) << "the error is also stored";
    }

    ReferenceServer plain({"--status", "200", "--body", "not json"});
    pointAt(plain.host(), plain.authorityFile());
    Delivery delivery;
    sendAndWait(delivery);
    EXPECT_FALSE(delivery.answer.has_value());
    EXPECT_FALSE(delivery.error.has_value()) << "a 200 that is not JSON gives neither";
}

TEST_F(UploadTransferTest, FailedTransfersAre423)
{
    // A port nobody listens on.
    QTcpServer probe;
    ASSERT_TRUE(probe.listen(QHostAddress::LocalHost));
    const quint16 closedPort = probe.serverPort();
    probe.close();

    // Servers that accept and then stay silent, hang up, or answer in plain text.
    QTcpServer silent, hangsUp, garbage;
    QList<QTcpSocket *> held;
    silent.listen(QHostAddress::LocalHost);
    QObject::connect(&silent, &QTcpServer::newConnection, [&] { held.append(silent.nextPendingConnection()); });
    hangsUp.listen(QHostAddress::LocalHost);
    QObject::connect(&hangsUp, &QTcpServer::newConnection, [&] { delete hangsUp.nextPendingConnection(); });
    garbage.listen(QHostAddress::LocalHost);
    QObject::connect(&garbage, &QTcpServer::newConnection, [&] {
        QTcpSocket *socket = garbage.nextPendingConnection();
        socket->write("HTTP/1.1 200 OK\r\n\r\n{\"token\":\"not over TLS\"}");
        socket->disconnectFromHost();
    });
    ReferenceServer untrusted;

    store->setTransferTimeout(std::chrono::milliseconds(400));
    const QString local = QStringLiteral("127.0.0.1:%1");
    for (const auto &[what, host] : {std::pair{"refused", local.arg(closedPort)}, {"silent", local.arg(silent.serverPort())},
                                     {"hangs up", local.arg(hangsUp.serverPort())}, {"garbage", local.arg(garbage.serverPort())},
                                     {"untrusted", untrusted.host()}}) {
        SCOPED_TRACE(what);
        pointAt(host);
        Delivery delivery;
        sendAndWait(delivery);
        EXPECT_EQ(delivery.code(), 423);
    }
    EXPECT_EQ(untrusted.logged("POST /file"), 0);
    qDeleteAll(held);
}

// Servers that read the whole upload and never answer it: a backend that dies after reading, a
// load balancer whose idle timer runs out, a backend that hangs. The backend may have acted on the
// first copy, so none gets a second one: 423 comes when the connection ends, or when the toolkit's
// own time-out does, and the images stay for the host's retry.
TEST_F(UploadTransferTest, AnUnansweredUploadIsSentOnceAndEndsWith423WhenItsConnectionDoes)
{
    using namespace std::chrono_literals;
    EXPECT_EQ(store->transferTimeout(), 60s);
    struct Case {
        const char *what;
        QString mode;                     // the server's --no-answer
        std::chrono::milliseconds timeout;  // the toolkit's
        qint64 earliestMs, latestMs;      // when the host hears of it
    };
    const Case cases[] = {
        {"closed at once", QStringLiteral("close"), 60s, 0, 4000},
        {"closed after 3 s", QStringLiteral("3"), 60s, 2900, 5800},
        {"never answered", QStringLiteral("never"), 1500ms, 1400, 2900},
        {"closed just before the time-out ends", QStringLiteral("2"), 2500ms, 1900, 3900},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.what);
        ReferenceServer server({"--no-answer", c.mode});
        ASSERT_TRUE(server.isRunning());
        pointAt(server.host(), server.authorityFile());
        store->setTransferTimeout(c.timeout);
        QElapsedTimer clock;
        clock.start();
        Delivery delivery;
        sendAndWait(delivery);
        const qint64 heardMs = clock.elapsed();
        EXPECT_EQ(delivery.code(), 423);
        EXPECT_GE(heardMs, c.earliestMs);
        EXPECT_LE(heardMs, c.latestMs);
        QTest::qWait(300);  // where a late re-send would show
        EXPECT_EQ(server.logged("POST /file"), 1);
        ASSERT_TRUE(store->getFaceImages());
        EXPECT_EQ(store->getFaceImages()->size(), 5) << "kept for the host's retry";
    }
    store->setTransferTimeout(0s);
    EXPECT_EQ(store->transferTimeout(), 60s);
}

// A host may end while its upload is unanswered. Its threads, and the network's own below them,
// must be gone with the application object: one still ending past it would hold OpenSSL's
// per-thread state beyond the library's clean-up at exit.
TEST_F(UploadTransferTest, AHostThatEndsMidTransferLeavesNoThreadOfTheUploadBehind)
{
    ReferenceServer server({"--no-answer", "never"});
    ASSERT_TRUE(server.isRunning());
    QProcess host;
    host.start(QStringLiteral(VEXTIL_END_MID_TRANSFER), {server.host(), server.authorityFile()});
    ASSERT_TRUE(host.waitForFinished(30000));
    ASSERT_EQ(host.exitCode(), 0) << host.readAllStandardError().toStdString();
    const QStringList threads = QString::fromLocal8Bit(host.readAllStandardOutput()).split('\n', Qt::SkipEmptyParts);
    EXPECT_TRUE(QTest::qWaitFor([&] { return server.logged("POST /file") == 1; }, 5000));
    EXPECT_FALSE(threads.contains("answered")) << "the server answered";
    // Linux keeps 15 characters of a thread's name.
    for (const char *name : {"com.VextilToolk", "QNetworkAccessM", "Qt bearer threa"})
        EXPECT_FALSE(threads.contains(QString::fromLatin1(name))) << name << " outlived the application: "
                                                                << threads.join(", ").toStdString();
}

// A redirect would carry the images and the key to a place the host did not name.
TEST_F(UploadTransferTest, ARedirectIsAnAnswerAndNothingIsSentWhereItPoints)
{
    ReferenceServer elsewhere;
    for (const char *status : {"302", "307", "308"}) {
        SCOPED_TRACE(status);
        ReferenceServer redirecting({"--status", status, "--location", QStringLiteral("https://%1/file").arg(elsewhere.host())});
        store->setUploadHost(redirecting.host());
        ASSERT_TRUE(store->setExtraCertificateAuthorities(
            {readFile(redirecting.authorityFile()), readFile(elsewhere.authorityFile())}));
        Delivery delivery;
        sendAndWait(delivery);
        EXPECT_EQ(delivery.code(), 1500);
        EXPECT_EQ(redirecting.logged("POST /file"), 1);
    }
    QTest::qWait(200);
    EXPECT_EQ(elsewhere.logged("POST /file") + elsewhere.logged("GET /file"), 0);
    store->setUploadHost({});
}

TEST_F(UploadTransferTest, TheDenyListedCertificateIsRefusedBeforeAnythingIsSent)
{
    const QString tls = QStringLiteral(VEXTIL_TEST_DATA_DIR "/tls/");
    ReferenceServer server({"--cert", tls + "denylisted-server.pem", "--cert-key", tls + "denylisted-server.key"});
    ASSERT_TRUE(server.isRunning());
    pointAt(server.host(), tls + "denylisted-server.pem");  // trusted by the system check
    Delivery delivery;
    sendAndWait(delivery);
    EXPECT_EQ(delivery.code(), 423);
    EXPECT_EQ(server.logged("POST /file"), 0);

    // The system check alone accepts this server: the refusal is the deny check's.
    QSslSocket socket;
    QSslConfiguration config = QSslConfiguration::defaultConfiguration();
    config.addCaCertificates(QSslCertificate::fromPath(tls + "denylisted-server.pem"));
    socket.setSslConfiguration(config);
    socket.connectToHostEncrypted("127.0.0.1", quint16(server.host().section(':', 1).toUInt()));
    EXPECT_TRUE(socket.waitForEncrypted(5000)) << qPrintable(socket.errorString());
    EXPECT_EQ(VextilRepository::getLocalCertificate(),
              QString::fromLatin1(socket.peerCertificate().toDer().toBase64()).replace(QRegularExpression("(.{76})(?!$)"), "\\1\r\n"));
}

TEST_F(UploadTransferTest, TestModeAnswersAtOnceAndSendsNothing)
{
    ReferenceServer server;
    pointAt(server.host(), server.authorityFile());
    QSettings().setValue("isTest", true);
    Delivery delivery;
    store->sendDataWithDataType(VextilDataTypeFace, delivery.callback());
    EXPECT_EQ(delivery.callCount(), 1) << "before the send returned";
    EXPECT_EQ(delivery.answer->value("token").toString(), "7301586240k58k602");
    EXPECT_EQ(delivery.thread, QThread::currentThread());
    EXPECT_EQ(store->getProgress(), 0.0);
    QTest::qWait(300);
    EXPECT_EQ(server.logged("POST /file"), 0);
    EXPECT_EQ(delivery.callCount(), 1);
}

TEST_F(UploadTransferTest, MissingKeyOrImagesFailBeforeAnyRequestButEmptyArraysAreSent)
{
    ReferenceServer server;
    pointAt(server.host(), server.authorityFile());
    Delivery noKey, noImages;
    store->setAuthKey(std::nullopt);
    store->sendDataWithDataType(VextilDataTypeFace, noKey.callback());
    EXPECT_EQ(noKey.code(), 420);

    store->setAuthKey(QString::fromLatin1(ReferenceServer::kKey));
    store->resetFaceImages();
    store->sendDataWithDataType(VextilDataTypeFace, noImages.callback());
    EXPECT_EQ(noImages.code(), 424);
    EXPECT_FALSE(store->error().has_value()) << "420 and 424 are not stored";
    QTest::qWait(200);
    EXPECT_EQ(server.logged("POST /file"), 0);

    store->setFaceImages(std::make_shared<QList<QImage>>());
    store->setFaceSmileImages(std::make_shared<QList<QImage>>());
    Delivery empty;
    sendAndWait(empty);
    EXPECT_TRUE(empty.answer.has_value()) << "an empty upload is not refused";
}

// A TLS server of the test's own that reads whole requests as they arrive and answers each
// with an empty JSON object: it shows exactly which header lines the toolkit sent, and whether it
// sent anything at all. It presents the chain it is given, offering HTTP/2 if asked to.
class CapturingServer : public QTcpServer {
public:
    explicit CapturingServer(QList<QSslCertificate> chain = QSslCertificate::fromPath(certificate()),
                             QSslKey key = loopbackKey(), bool offerHttp2 = false)
    {
        m_config.setLocalCertificateChain(chain);
        m_config.setPrivateKey(key);
        if (offerHttp2)
            m_config.setAllowedNextProtocols({QSslConfiguration::ALPNProtocolHTTP2, QSslConfiguration::NextProtocolHttp1_1});
        listen(QHostAddress::LocalHost);
    }
    QString host() const { return QStringLiteral("127.0.0.1:%1").arg(serverPort()); }
    static QString certificate() { return QStringLiteral(VEXTIL_TEST_DATA_DIR "/tls/loopback-server.pem"); }
    // The header lines of the last complete request, lower-cased names.
    QByteArrayList headerLines() const { return m_headerLines; }
    // Bytes received over TLS, and the protocol the last handshake settled on.
    qint64 bytesReceived() const { return m_received; }
    QByteArray negotiated() const { return m_negotiated; }

protected:
    void incomingConnection(qintptr descriptor) override
    {
        auto *socket = new QSslSocket(this);
        socket->setSocketDescriptor(descriptor);
        socket->setSslConfiguration(m_config);
        auto buffer = std::make_shared<QByteArray>();
        connect(socket, &QSslSocket::encrypted, socket, [this, socket] {
            m_negotiated = socket->sslConfiguration().nextNegotiatedProtocol();
        });
        connect(socket, &QSslSocket::readyRead, socket, [this, socket, buffer] {
            const QByteArray data = socket->readAll();
            m_received += data.size();
            buffer->append(data);
            const qsizetype end = buffer->indexOf("\r\n\r\n");
            if (end < 0)
                return;
            const QByteArrayList lines = buffer->left(end).split('\n');
            qsizetype length = 0;
            for (const QByteArray &line : lines)
                if (line.toLower().startsWith("content-length:"))
                    length = line.mid(15).trimmed().toLongLong();
            if (buffer->size() < end + 4 + length)
                return;
            m_headerLines.clear();
            for (const QByteArray &line : lines.mid(1))
                m_headerLines.append(line.trimmed().toLower());
            socket->write("HTTP/1.1 200 OK\r\nContent-Type: application/json\r\nContent-Length: 2\r\n\r\n{}");
            buffer->clear();
        });
        socket->startServerEncryption();
    }

private:
    static QSslKey loopbackKey()
    {
        QFile file(QStringLiteral(VEXTIL_TEST_DATA_DIR "/tls/loopback-server.key"));
        return file.open(QIODevice::ReadOnly) ? QSslKey(file.readAll(), QSsl::Ec) : QSslKey();
    }

    QSslConfiguration m_config = QSslConfiguration::defaultConfiguration();
    QByteArrayList m_headerLines;
    qint64 m_received = 0;
    QByteArray m_negotiated;
};

TEST_F(UploadTransferTest, PinsHoldOnlyForKeysThatSignedTheirWayFromTheLeafToATrustedAuthority)
{
    const TestIdentity root = TestCertificates::authority(QStringLiteral("Pinning Root CA"));
    const TestIdentity intermediate = TestCertificates::issue(root, QStringLiteral("Pinning Intermediate CA"), true);
    const TestIdentity leaf = TestCertificates::issue(intermediate, QStringLiteral("127.0.0.1"), false);
    const TestIdentity rogueRoot = TestCertificates::authority(QStringLiteral("Rogue Root CA"));
    const TestIdentity rogueLeaf = TestCertificates::issue(rogueRoot, QStringLiteral("127.0.0.1"), false);
    // An interceptor whose authority the device trusts, named after the pinned intermediate, and
    // a leaf of its own that it presents with the genuine intermediate behind it.
    const TestIdentity interceptor = TestCertificates::authority(QStringLiteral("Pinning Intermediate CA"));
    const TestIdentity interceptorLeaf = TestCertificates::issue(interceptor, QStringLiteral("127.0.0.1"), false);
    // Every authority is trusted: every server below passes the system's check.
    ASSERT_TRUE(store->setExtraCertificateAuthorities(
        {root.certificate.toPem(), rogueRoot.certificate.toPem(), interceptor.certificate.toPem()}));
    EXPECT_FALSE(store->setPinnedPublicKeys({QByteArray("not a digest")}));

    struct Case {
        const char *name;
        QList<QSslCertificate> chain;
        QSslKey key;
        QList<QByteArray> pins;
        bool accepted;
    };
    const QByteArray rootPin = TestCertificates::publicKeyPin(root.certificate);
    const QByteArray leafPin = TestCertificates::publicKeyPin(leaf.certificate);
    const QByteArray intermediatePin = TestCertificates::publicKeyPin(intermediate.certificate);
    const Case cases[] = {
        {"pin on the leaf", {leaf.certificate, intermediate.certificate}, leaf.key, {leafPin}, true},
        {"pin on the intermediate", {leaf.certificate, intermediate.certificate}, leaf.key, {QByteArray(32, 'x'), intermediatePin}, true},
        {"pin on a root the server leaves out", {leaf.certificate, intermediate.certificate}, leaf.key, {rootPin}, true},
        {"no pins", {rogueLeaf.certificate}, rogueLeaf.key, {}, true},
        {"rogue leaf of another authority", {rogueLeaf.certificate}, rogueLeaf.key, {intermediatePin}, false},
        {"rogue leaf showing the pinned intermediate", {rogueLeaf.certificate, intermediate.certificate}, rogueLeaf.key,
         {intermediatePin}, false},
        {"interceptor named after the pinned intermediate, showing it", {interceptorLeaf.certificate, intermediate.certificate},
         interceptorLeaf.key, {intermediatePin}, false},
        {"interceptor showing the pinned intermediate and root", {interceptorLeaf.certificate, intermediate.certificate, root.certificate},
         interceptorLeaf.key, {intermediatePin, rootPin}, false},
    };
    for (const Case &c : cases) {
        for (bool http2 : {false, true}) {
            if (c.accepted && http2)
                continue;  // this server answers HTTP/1.1 only
            SCOPED_TRACE(std::string(c.name) + (http2 ? ", HTTP/2 offered" : ""));
            ASSERT_TRUE(store->setPinnedPublicKeys(c.pins));
            CapturingServer server(c.chain, c.key, http2);
            store->setUploadHost(server.host());
            Delivery delivery;
            sendAndWait(delivery);
            EXPECT_EQ(delivery.code(), c.accepted ? 0 : 423);
            if (!c.accepted) {
                EXPECT_EQ(server.bytesReceived(), 0) << "not a request byte";
            }
            if (http2) {
                EXPECT_EQ(server.negotiated(), QSslConfiguration::ALPNProtocolHTTP2);
            }
        }
    }
}

TEST_F(UploadTransferTest, AnEmptyKeyIsSentAsAnEmptyAuthorizationHeader)
{
    // Only a missing key is 420; an empty one, null or not, goes to the service as it is.
    CapturingServer server;
    pointAt(server.host(), CapturingServer::certificate());
    for (const QString &key : {QString(), QString(QLatin1String("")), QStringLiteral("k")}) {
        SCOPED_TRACE(key.isNull() ? "null" : key.isEmpty() ? "empty" : "set");
        store->setAuthKey(key);
        Delivery delivery;
        sendAndWait(delivery);
        EXPECT_FALSE(delivery.error.has_value());
        EXPECT_TRUE(server.headerLines().contains(key.isEmpty() ? QByteArray("authorization:") : QByteArray("authorization: k")))
            << server.headerLines().join(" | ").toStdString();
    }
}

TEST_F(UploadTransferTest, TheHostSetsTheEndpointInCodeWithExtraAuthoritiesBesideTheSystems)
{
    ReferenceServer server;
    store->setUploadHost(server.host());
    EXPECT_EQ(store->uploadHost(), server.host());
    EXPECT_FALSE(store->setExtraCertificateAuthorities({"not a certificate"}));
    Delivery untrusted;
    sendAndWait(untrusted);
    EXPECT_EQ(untrusted.code(), 423) << "the server's own authority is not the system's";
    ASSERT_TRUE(store->setExtraCertificateAuthorities({readFile(server.authorityFile())}));
    Delivery trusted;
    sendAndWait(trusted);
    EXPECT_FALSE(trusted.error.has_value());

    // The system's authorities stay in force beside the extra ones.
    const QSslConfiguration tls = VextilServerTrust::configuration(QSslCertificate::fromPath(server.authorityFile()));
    const QList<QSslCertificate> system = QSslConfiguration::systemCaCertificates();
    ASSERT_FALSE(system.isEmpty()) << "this machine has a system trust store";
    EXPECT_EQ(tls.caCertificates().size(), system.size() + 1);
    EXPECT_TRUE(tls.caCertificates().contains(system.first()));
    store->setUploadHost({});
}

#ifdef VEXTIL_ENV_OVERRIDES
QStringList warnings;  // what the toolkit logged, for the test below

TEST_F(UploadTransferTest, DevelopmentBuildsLetTheEnvironmentOverrideTheEndpointWithOneWarning)
{
    ReferenceServer server;
    qputenv("VEXTIL_UPLOAD_HOST", server.host().toUtf8());
    qputenv("VEXTIL_UPLOAD_CA_FILE", server.authorityFile().toUtf8());
    store->setUploadHost(QStringLiteral("127.0.0.1:1"));  // nobody listens there
    Delivery ignored;
    sendAndWait(ignored);
    EXPECT_EQ(ignored.code(), 423) << "the variables count only once overrides are installed";

    qInstallMessageHandler([](QtMsgType type, const QMessageLogContext &, const QString &message) {
        if (type == QtWarningMsg)
            warnings.append(message);
    });
    VextilEnvironmentOverrides::install();
    for (int i = 0; i < 2; ++i) {
        Delivery overridden;
        sendAndWait(overridden);
        EXPECT_FALSE(overridden.error.has_value());
    }
    qInstallMessageHandler(nullptr);
    VextilUploadEndpoint::setAdjustment({});
    qunsetenv("VEXTIL_UPLOAD_HOST");
    qunsetenv("VEXTIL_UPLOAD_CA_FILE");
    EXPECT_EQ(warnings.filter("overridden from the environment").size(), 1) << warnings.join("\n").toStdString();
    store->setUploadHost({});
}
#endif

TEST_F(UploadTransferTest, SendsInARowOrFromInsideACallbackAreEachAnsweredOnceAndNeverCrash)
{
    ReferenceServer server;
    pointAt(server.host(), server.authorityFile());
    // As on a phone, where the GUI thread runs ahead of the network threads.
    QThread::currentThread()->setPriority(QThread::HighestPriority);
    constexpr int kRounds = 12;
    for (int round = 0; round < kRounds; ++round) {
        SCOPED_TRACE(round);
        // A double tap: the second send replaces the first in the store while both are in flight.
        Delivery first, second;
        store->sendDataWithDataType(VextilDataTypeFace, first.callback());
        store->sendDataWithDataType(VextilDataTypeFace, second.callback());
        // A host that lets go of the store's session from its callback, on the network thread.
        Delivery third;
        store->sendDataWithDataType(VextilDataTypeFace, [&](std::optional<QVariantMap> a, std::optional<VextilError> e) {
            store->setSession(nullptr);
            third.callback()(std::move(a), std::move(e));
        });
        // The GUI thread spins on its events, taking each hand-off the moment it is posted.
        QElapsedTimer waited;
        waited.start();
        while (!(first.callCount() && second.callCount() && third.callCount()) && waited.elapsed() < 20000)
            QCoreApplication::processEvents();
        ASSERT_TRUE(first.callCount() && second.callCount() && third.callCount());
        EXPECT_EQ(first.code() + second.code() + third.code(), 0);
    }
    QTest::qWait(100);
    EXPECT_EQ(server.uploadFolders().size(), 3 * kRounds);
    EXPECT_EQ(server.logged("POST /file"), 3 * kRounds) << "each received once";

    // A retry from inside the callback, as a host does after a failure: the retried send and the
    // callback that started it both keep their own state.
    auto alive = std::make_shared<bool>(true);
    Delivery retried;
    std::atomic<int> callbackState{0};  // 1: its own state outlived the retry; 2: it did not
    store->setUploadHost(QStringLiteral("127.0.0.1:1"));  // refused: 423
    store->sendDataWithDataType(VextilDataTypeFace, [&, guard = std::make_shared<AliveGuard>(alive)](std::optional<QVariantMap>,
                                                                                                     std::optional<VextilError> e) {
        EXPECT_EQ(e ? e->code : 0, 423);
        store->setUploadHost(server.host());
        store->sendDataWithDataType(VextilDataTypeFace, retried.callback());
        callbackState = *alive ? 1 : 2;
    });
    ASSERT_TRUE(QTest::qWaitFor([&] { return retried.callCount() > 0 && callbackState > 0; }, 20000));
    EXPECT_EQ(callbackState, 1);
    EXPECT_EQ(retried.code(), 0);
    QThread::currentThread()->setPriority(QThread::NormalPriority);
}

// Each send hears its own transfer's failure, whatever the store's error property holds by then:
// here another thread keeps storing a different error, as other sends failing at the same
// moment on their own threads would.
TEST_F(UploadTransferTest, EachFailingSendHearsItsOwnErrorWhileOthersStoreTheirs)
{
    std::atomic<bool> storing{true};
    std::thread otherSends([&] {
        const VextilError theirs = VextilError::createVextilSDKErrorWithCode(VextilErrorCodeUnexpectedStatus);
        while (storing)
            store->setError(theirs);
    });
    store->setUploadHost(QStringLiteral("127.0.0.1:1"));  // refused: 423
    constexpr int kSends = 40;
    int heardOthers = 0;
    for (int send = 0; send < kSends; ++send) {
        Delivery delivery;
        store->sendDataWithDataType(VextilDataTypeFace, delivery.callback());
        ASSERT_TRUE(QTest::qWaitFor([&] { return delivery.callCount() > 0; }, 20000));
        heardOthers += delivery.code() != VextilErrorCodeTransferFailed;
    }
    storing = false;
    otherSends.join();
    EXPECT_EQ(heardOthers, 0) << "of " << kSends << " sends";
    store->setUploadHost({});
}

TEST_F(UploadTransferTest, OversizedBodiesAreRefusedWithTheServersStatus)
{
    ReferenceServer small({"--max-body", "4000"});
    pointAt(small.host(), small.authorityFile());
    Delivery tooLarge;
    sendAndWait(tooLarge);
    EXPECT_EQ(tooLarge.code(), 1500) << "413 is another status";
}

}  // namespace
