#include "TestCertificates.h"

#include "ServerCertificates.h"

#include <QCryptographicHash>

#include <openssl/pem.h>

#include <memory>

namespace {

struct Free {
    void operator()(X509 *c) const { X509_free(c); }
    void operator()(EVP_PKEY *k) const { EVP_PKEY_free(k); }
    void operator()(BIO *b) const { BIO_free(b); }
};

std::unique_ptr<EVP_PKEY, Free> readKey(const QSslKey &key)
{
    const QByteArray pem = key.toPem();
    std::unique_ptr<BIO, Free> bio(BIO_new_mem_buf(pem.constData(), int(pem.size())));
    return std::unique_ptr<EVP_PKEY, Free>(PEM_read_bio_PrivateKey(bio.get(), nullptr, nullptr, nullptr));
}

std::unique_ptr<X509, Free> readCertificate(const QSslCertificate &certificate)
{
    const QByteArray pem = certificate.toPem();
    std::unique_ptr<BIO, Free> bio(BIO_new_mem_buf(pem.constData(), int(pem.size())));
    return std::unique_ptr<X509, Free>(PEM_read_bio_X509(bio.get(), nullptr, nullptr, nullptr));
}

template <typename Write>
QByteArray pemOf(Write write)
{
    std::unique_ptr<BIO, Free> bio(BIO_new(BIO_s_mem()));
    write(bio.get());
    char *data = nullptr;
    const long size = BIO_get_mem_data(bio.get(), &data);
    return QByteArray(data, size);
}

// A new P-256 key and its certificate, issued by `issuer` or, without one, by itself.
TestIdentity make(const QString &name, const TestIdentity *issuer, bool authority)
{
    std::unique_ptr<EVP_PKEY, Free> key(EVP_EC_gen("P-256"));
    const auto issuerCert = issuer ? readCertificate(issuer->certificate) : nullptr;
    const auto issuerKey = issuer ? readKey(issuer->key) : nullptr;
    const ServerCertificates::Certificate cert =
        ServerCertificates::issue(name.toUtf8().constData(), key.get(), issuerCert.get(), issuerKey.get(), authority);
    const QByteArray certPem = pemOf([&](BIO *bio) { PEM_write_bio_X509(bio, cert.get()); });
    const QByteArray keyPem = pemOf([&](BIO *bio) { PEM_write_bio_PrivateKey(bio, key.get(), nullptr, nullptr, 0, nullptr, nullptr); });
    return {QSslCertificate(certPem, QSsl::Pem), QSslKey(keyPem, QSsl::Ec, QSsl::Pem)};
}

}  // namespace

TestIdentity TestCertificates::authority(const QString &name) { return make(name, nullptr, true); }

TestIdentity TestCertificates::issue(const TestIdentity &issuer, const QString &name, bool authority)
{
    return make(name, &issuer, authority);
}

QByteArray TestCertificates::publicKeyPin(const QSslCertificate &certificate)
{
    const auto cert = readCertificate(certificate);
    unsigned char *der = nullptr;
    const int size = i2d_PUBKEY(X509_get0_pubkey(cert.get()), &der);
    const QByteArray digest = QCryptographicHash::hash(QByteArray(reinterpret_cast<const char *>(der), size), QCryptographicHash::Sha256);
    OPENSSL_free(der);
    return digest;
}
