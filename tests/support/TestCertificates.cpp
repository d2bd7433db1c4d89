#include "TestCertificates.h"

#include <QCryptographicHash>

#include <openssl/pem.h>
#include <openssl/rand.h>
#include <openssl/x509v3.h>

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

void addExtension(X509 *cert, X509 *issuer, int nid, const char *value)
{
    X509V3_CTX context;
    X509V3_set_ctx_nodb(&context);
    X509V3_set_ctx(&context, issuer, cert, nullptr, nullptr, 0);
    if (X509_EXTENSION *extension = X509V3_EXT_conf_nid(nullptr, &context, nid, value)) {
        X509_add_ext(cert, extension, -1);
        X509_EXTENSION_free(extension);
    }
}

// Signs a new certificate for `key` named `name`; a null issuer makes it self-signed.
TestIdentity make(const QString &name, const TestIdentity *issuer, bool authority)
{
    std::unique_ptr<EVP_PKEY, Free> key(EVP_EC_gen("P-256"));
    std::unique_ptr<X509, Free> cert(X509_new());
    X509_set_version(cert.get(), 2);
    unsigned char serial[16];
    RAND_bytes(serial, sizeof serial);
    serial[0] &= 0x7f;
    BIGNUM *number = BN_bin2bn(serial, sizeof serial, nullptr);
    BN_to_ASN1_INTEGER(number, X509_get_serialNumber(cert.get()));
    BN_free(number);
    X509_gmtime_adj(X509_getm_notBefore(cert.get()), -3600);
    X509_gmtime_adj(X509_getm_notAfter(cert.get()), 60L * 60 * 24 * 30);
    X509_set_pubkey(cert.get(), key.get());
    const QByteArray cn = name.toUtf8();
    X509_NAME_add_entry_by_txt(X509_get_subject_name(cert.get()), "CN", MBSTRING_UTF8,
                               reinterpret_cast<const unsigned char *>(cn.constData()), -1, -1, 0);
    const auto issuerCert = issuer ? readCertificate(issuer->certificate) : nullptr;
    const auto issuerKey = issuer ? readKey(issuer->key) : nullptr;
    X509 *signer = issuer ? issuerCert.get() : cert.get();
    X509_set_issuer_name(cert.get(), X509_get_subject_name(signer));
    addExtension(cert.get(), signer, NID_basic_constraints, authority ? "critical,CA:TRUE" : "critical,CA:FALSE");
    addExtension(cert.get(), signer, NID_subject_key_identifier, "hash");
    if (authority) {
        addExtension(cert.get(), signer, NID_key_usage, "critical,keyCertSign,cRLSign");
    } else {
        addExtension(cert.get(), signer, NID_ext_key_usage, "serverAuth");
        addExtension(cert.get(), signer, NID_subject_alt_name, "DNS:localhost,IP:127.0.0.1");
    }
    X509_sign(cert.get(), issuer ? issuerKey.get() : key.get(), EVP_sha256());
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
