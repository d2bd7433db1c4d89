#include "ServerCertificates.h"

#include <QDir>

#include <openssl/pem.h>
#include <openssl/rand.h>
#include <openssl/x509v3.h>

#include <cstdio>

namespace {

constexpr long kValiditySeconds = 60L * 60 * 24 * 825;

ServerCertificates::Certificate newCertificate(const char *commonName, EVP_PKEY *key)
{
    ServerCertificates::Certificate cert(X509_new());
    X509_set_version(cert.get(), 2);
    unsigned char serial[16];
    RAND_bytes(serial, sizeof serial);
    serial[0] &= 0x7f;  // a positive serial number
    BIGNUM *number = BN_bin2bn(serial, sizeof serial, nullptr);
    BN_to_ASN1_INTEGER(number, X509_get_serialNumber(cert.get()));
    BN_free(number);
    X509_gmtime_adj(X509_getm_notBefore(cert.get()), -3600);
    X509_gmtime_adj(X509_getm_notAfter(cert.get()), kValiditySeconds);
    X509_set_pubkey(cert.get(), key);
    X509_NAME *name = X509_get_subject_name(cert.get());
    X509_NAME_add_entry_by_txt(name, "O", MBSTRING_ASC,
                               reinterpret_cast<const unsigned char *>("VextilToolkit reference server"), -1, -1, 0);
    X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_ASC, reinterpret_cast<const unsigned char *>(commonName), -1, -1, 0);
    return cert;
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

}  // namespace

ServerCertificates::Certificate ServerCertificates::issue(const char *commonName, EVP_PKEY *key, X509 *issuer,
                                                         EVP_PKEY *issuerKey, bool authority)
{
    Certificate cert = newCertificate(commonName, key);
    X509 *signer = issuer ? issuer : cert.get();  // no issuer: self-signed
    X509_set_issuer_name(cert.get(), X509_get_subject_name(signer));
    addExtension(cert.get(), signer, NID_basic_constraints, authority ? "critical,CA:TRUE" : "critical,CA:FALSE");
    if (authority) {
        addExtension(cert.get(), signer, NID_key_usage, "critical,keyCertSign,cRLSign");
        addExtension(cert.get(), signer, NID_subject_key_identifier, "hash");
    } else {
        addExtension(cert.get(), signer, NID_ext_key_usage, "serverAuth");
        addExtension(cert.get(), signer, NID_subject_alt_name, "DNS:localhost,IP:127.0.0.1,IP:::1");
        addExtension(cert.get(), signer, NID_authority_key_identifier, "keyid:always");
    }
    X509_sign(cert.get(), issuerKey ? issuerKey : key, EVP_sha256());
    return cert;
}

ServerCertificates ServerCertificates::generate()
{
    ServerCertificates result;
    Key authorityKey(EVP_EC_gen("P-256"));
    result.key.reset(EVP_EC_gen("P-256"));
    result.authority = issue("VextilToolkit reference upload CA", authorityKey.get(), nullptr, nullptr, true);
    result.certificate = issue("localhost", result.key.get(), result.authority.get(), authorityKey.get(), false);
    return result;
}

ServerCertificates ServerCertificates::load(const std::string &certificatePath, const std::string &keyPath)
{
    ServerCertificates result;
    if (FILE *file = std::fopen(certificatePath.c_str(), "r")) {
        result.certificate.reset(PEM_read_X509(file, nullptr, nullptr, nullptr));
        std::fclose(file);
    }
    if (FILE *file = std::fopen(keyPath.c_str(), "r")) {
        result.key.reset(PEM_read_PrivateKey(file, nullptr, nullptr, nullptr));
        std::fclose(file);
    }
    return result;
}

bool ServerCertificates::prepare(const std::string &certificatePath, const std::string &keyPath, const std::string &storage,
                                 ServerCertificates &result, std::string &authorityPath, std::string &error)
{
    if (!QDir().mkpath(QString::fromStdString(storage))) {
        error = "cannot create the storage folder " + storage;
        return false;
    }
    if (certificatePath.empty()) {
        result = generate();
        authorityPath = QDir(QString::fromStdString(storage)).absoluteFilePath(QStringLiteral("ca.pem")).toStdString();
        if (!result.writeAuthority(authorityPath)) {
            error = "cannot write the certificate authority to " + authorityPath;
            return false;
        }
    } else {
        result = load(certificatePath, keyPath);
    }
    if (!result.isValid()) {
        error = "cannot read the server certificate or its key";
        return false;
    }
    return true;
}

bool ServerCertificates::writeAuthority(const std::string &path) const
{
    if (!authority)
        return false;
    FILE *file = std::fopen(path.c_str(), "w");
    if (!file)
        return false;
    const bool written = PEM_write_X509(file, authority.get()) == 1;
    return std::fclose(file) == 0 && written;
}
