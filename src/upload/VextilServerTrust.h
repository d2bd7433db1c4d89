#pragma once

#include <QByteArray>
#include <QList>
#include <QSslCertificate>
#include <QSslConfiguration>
#include <QString>

/// What an upload asks of a server beyond a chain the system validates (which the TLS handshake
/// has checked already): its certificate is not the refused one, and, when the host pinned public
/// keys, one of them stands in the chain that signatures link from its leaf to a trusted authority.
class VextilServerTrust {
public:
    VextilServerTrust() = default;
    /// `refusedCertificate`: the text a server's leaf must not encode to (see base64Lines).
    /// `pinnedKeys`: SHA-256 digests of DER SubjectPublicKeyInfo; none means no pinning.
    /// `tls`: the configuration the handshake uses; its authorities are where the verified chain ends.
    VextilServerTrust(QString refusedCertificate, QList<QByteArray> pinnedKeys, QSslConfiguration tls);

    /// Whether to talk to a server that presented this chain, leaf first. With pins, reads the
    /// trusted authorities (the system's from disk): call it on the network thread.
    bool accepts(const QList<QSslCertificate> &chain) const;

    /// The TLS settings of an upload: the system's authorities (or those of the application's
    /// default configuration) with `extra` added to them, never in their place.
    static QSslConfiguration configuration(const QList<QSslCertificate> &extra);
    /// The authorities a configuration made by configuration() trusts.
    static QList<QSslCertificate> authoritiesOf(const QSslConfiguration &configuration);

    /// The SHA-256 of a certificate's DER SubjectPublicKeyInfo.
    static QByteArray publicKeyDigest(const QSslCertificate &certificate);
    /// DER bytes as Base64 in lines of 76 characters joined by CR LF, no line break at the end.
    static QString base64Lines(const QByteArray &der);

private:
    QString m_refused;
    QList<QByteArray> m_pins;
    QSslConfiguration m_tls;
};
