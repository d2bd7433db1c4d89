#pragma once

#include <QByteArray>
#include <QList>
#include <QSslCertificate>
#include <QString>

/// What an upload asks of a server beyond a chain the system validates (which the TLS handshake
/// has checked already): its certificate is not the refused one, and, when the host pinned public
/// keys, one of them is in its chain.
class VextilServerTrust {
public:
    VextilServerTrust() = default;
    /// `refusedCertificate`: the text a server's leaf must not encode to (see base64Lines).
    /// `pinnedKeys`: SHA-256 digests of DER SubjectPublicKeyInfo; none means no pinning.
    VextilServerTrust(QString refusedCertificate, QList<QByteArray> pinnedKeys);

    /// Whether to talk to a server that presented this chain, leaf first. Only the part of the
    /// chain in which each certificate names the next as its issuer counts for the pins.
    bool accepts(const QList<QSslCertificate> &chain) const;

    /// The SHA-256 of a certificate's DER SubjectPublicKeyInfo.
    static QByteArray publicKeyDigest(const QSslCertificate &certificate);
    /// DER bytes as Base64 in lines of 76 characters joined by CR LF, no line break at the end.
    static QString base64Lines(const QByteArray &der);

private:
    QString m_refused;
    QList<QByteArray> m_pins;
};
