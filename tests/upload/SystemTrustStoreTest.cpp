// Run by with-system-authority.sh, whose test authority is the one authority in the system's
// trust store: uploads must trust it as they trust any publicly issued certificate.
#include <VextilToolkit/VextilRepository.h>

#include "ReferenceServer.h"
#include "TestCertificates.h"
#include "TestImages.h"

#include <QDir>
#include <QFile>
#include <QMutex>
#include <QSettings>
#include <QSslConfiguration>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

namespace {

QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// The authority the script put in the system's store.
TestIdentity systemAuthority()
{
    const QDir folder(qEnvironmentVariable("VEXTIL_SYSTEM_AUTHORITY"));
    const QList<QSslCertificate> certificates = QSslCertificate::fromPath(folder.filePath("authority.pem"));
    return {certificates.value(0), QSslKey(readFile(folder.filePath("authority.key")), QSsl::Ec)};
}

// A reference server presenting a certificate for 127.0.0.1 from `issuer`, and nothing else.
class ServerUnder {
public:
    explicit ServerUnder(const TestIdentity &issuer)
    {
        const TestIdentity leaf = TestCertificates::issue(issuer, QStringLiteral("127.0.0.1"), false);
        write("leaf.pem", leaf.certificate.toPem());
        write("leaf.key", leaf.key.toPem());
        server = std::make_unique<ReferenceServer>(
            QStringList{"--cert", m_dir.filePath("leaf.pem"), "--cert-key", m_dir.filePath("leaf.key")});
    }
    std::unique_ptr<ReferenceServer> server;

private:
    void write(const QString &name, const QByteArray &data)
    {
        QFile file(m_dir.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(data);
    }
    QTemporaryDir m_dir;
};

// Sends the face data and returns the error code, 0 for an answer.
int send()
{
    QMutex mutex;
    int code = -1;
    VextilRepository::sharedInstance()->sendDataWithDataType(
        VextilDataTypeFace, [&](std::optional<QVariantMap> answer, std::optional<VextilError> error) {
            QMutexLocker lock(&mutex);
            code = error ? error->code : answer ? 0 : -2;
        });
    const bool done = QTest::qWaitFor(
        [&] {
            QMutexLocker lock(&mutex);
            return code != -1;
        },
        20000);
    return done ? code : -3;
}

class SystemTrustStoreTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_FALSE(qEnvironmentVariableIsEmpty("VEXTIL_SYSTEM_AUTHORITY")) << "run through with-system-authority.sh";
        ASSERT_FALSE(authority.certificate.isNull());
        ASSERT_FALSE(authority.key.isNull());
        QSettings().setValue("isTest", false);
        store->setAuthKey(QString::fromLatin1(ReferenceServer::kKey));
        QImage image(40, 60, QImage::Format_RGB32);
        image.fill(Qt::darkCyan);
        store->setFaceImages(std::make_shared<QList<QImage>>(5, image));
        store->setFaceSmileImages(std::make_shared<QList<QImage>>(2, image));
    }

    const TestIdentity authority = systemAuthority();
    VextilRepository *store = VextilRepository::sharedInstance();
};

TEST_F(SystemTrustStoreTest, TheProcessSeesTheTestAuthorityAsTheSystemsOnly)
{
    const QList<QSslCertificate> system = QSslConfiguration::systemCaCertificates();
    ASSERT_FALSE(system.isEmpty());
    for (const QSslCertificate &certificate : system)
        EXPECT_EQ(certificate, authority.certificate);
}

TEST_F(SystemTrustStoreTest, AServerUnderASystemAuthorityIsTrustedWithOrWithoutExtraAuthoritiesAndPinsReachTheRoot)
{
    ServerUnder backend(authority);
    ASSERT_TRUE(backend.server->isRunning());
    store->setUploadHost(backend.server->host());
    EXPECT_EQ(send(), 0) << "the system's authorities alone";

    const TestIdentity other = TestCertificates::authority(QStringLiteral("Host's Private CA"));
    ASSERT_TRUE(store->setExtraCertificateAuthorities({other.certificate.toPem()}));
    EXPECT_EQ(send(), 0) << "extra authorities are added to the system's, not put in their place";

    // The server sends only its leaf: a pin on the system's root holds through the store.
    ASSERT_TRUE(store->setPinnedPublicKeys({TestCertificates::publicKeyPin(authority.certificate)}));
    EXPECT_EQ(send(), 0) << "a pin on a root the server does not send";
    ASSERT_TRUE(store->setPinnedPublicKeys({TestCertificates::publicKeyPin(other.certificate)}));
    EXPECT_EQ(send(), 423) << "a pin on another authority";
    EXPECT_EQ(backend.server->uploadFolders().size(), 3);

    // And the check is not open: a server whose authority is neither the system's nor extra fails.
    store->setPinnedPublicKeys({});
    ServerUnder stranger(TestCertificates::authority(QStringLiteral("Stranger CA")));
    store->setUploadHost(stranger.server->host());
    EXPECT_EQ(send(), 423);
    EXPECT_EQ(stranger.server->logged("POST /file"), 0);
}

}  // namespace
