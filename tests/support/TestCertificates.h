#pragma once

#include <QByteArray>
#include <QSslCertificate>
#include <QSslKey>
#include <QString>

// Certificates made in the test: authorities, intermediates and server certificates for
// 127.0.0.1, each with a fresh P-256 key.
struct TestIdentity {
    QSslCertificate certificate;
    QSslKey key;
};

class TestCertificates {
public:
    // A self-signed certificate authority.
    static TestIdentity authority(const QString &name);
    // A certificate signed by `issuer`: an intermediate authority, or a server certificate for
    // 127.0.0.1 and localhost.
    static TestIdentity issue(const TestIdentity &issuer, const QString &name, bool authority);
    // The SHA-256 of the certificate's DER SubjectPublicKeyInfo: what a host pins.
    static QByteArray publicKeyPin(const QSslCertificate &certificate);
};
