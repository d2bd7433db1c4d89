#pragma once

#include <openssl/evp.h>
#include <openssl/x509.h>

#include <memory>
#include <string>

// A server certificate and key for TLS, either loaded from PEM files or made on the spot
// together with a certificate authority that signs it.
class ServerCertificates {
public:
    struct Deleter {
        void operator()(X509 *c) const { X509_free(c); }
        void operator()(EVP_PKEY *k) const { EVP_PKEY_free(k); }
    };
    using Certificate = std::unique_ptr<X509, Deleter>;
    using Key = std::unique_ptr<EVP_PKEY, Deleter>;

    // A new authority, and a certificate for localhost and 127.0.0.1 that it signs.
    static ServerCertificates generate();
    // A certificate for `key`: an authority, or a server certificate for localhost and
    // 127.0.0.1; signed by `issuer` with `issuerKey`, or by itself when they are null.
    static Certificate issue(const char *commonName, EVP_PKEY *key, X509 *issuer, EVP_PKEY *issuerKey, bool authority);
    // The certificate and key of these PEM files; empty members when either cannot be read.
    static ServerCertificates load(const std::string &certificatePath, const std::string &keyPath);

    // The certificate and key of these PEM files; or, without a certificate file, new ones whose
    // authority is written into `storage`, at `authorityPath`. False with a reason on any failure.
    static bool prepare(const std::string &certificatePath, const std::string &keyPath, const std::string &storage,
                        ServerCertificates &result, std::string &authorityPath, std::string &error);

    // Writes the authority's certificate as PEM; false when there is none or writing fails.
    bool writeAuthority(const std::string &path) const;
    bool isValid() const { return certificate && key; }

    Certificate authority;
    Certificate certificate;
    Key key;
};
