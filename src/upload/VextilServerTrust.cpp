#include "upload/VextilServerTrust.h"

#include "upload/VextilCertificateChainCleaner.h"

#include <QCryptographicHash>
#include <QSslKey>

VextilServerTrust::VextilServerTrust(QString refusedCertificate, QList<QByteArray> pinnedKeys, QSslConfiguration tls)
    : m_refused(std::move(refusedCertificate)), m_pins(std::move(pinnedKeys)), m_tls(std::move(tls))
{
}

bool VextilServerTrust::accepts(const QList<QSslCertificate> &chain) const
{
    if (chain.isEmpty() || (!m_refused.isEmpty() && base64Lines(chain.first().toDer()) == m_refused))
        return false;
    if (m_pins.isEmpty())
        return true;
    // Only keys that signed their way from the leaf to an authority count: a certificate the
    // server merely sends along (a genuine one behind an interceptor's leaf) proves nothing.
    for (const QSslCertificate &certificate : VextilCertificateChainCleaner::clean(chain, authoritiesOf(m_tls)))
        if (m_pins.contains(publicKeyDigest(certificate)))
            return true;
    return false;
}

QSslConfiguration VextilServerTrust::configuration(const QList<QSslCertificate> &extra)
{
    QSslConfiguration tls = QSslConfiguration::defaultConfiguration();
    // Adding authorities switches off Qt's loading of the system's on demand, so they are added
    // to the system's explicitly; without extras the default stays exactly as it is.
    if (!extra.isEmpty())
        tls.setCaCertificates(authoritiesOf(tls) + extra);
    return tls;
}

QList<QSslCertificate> VextilServerTrust::authoritiesOf(const QSslConfiguration &configuration)
{
    // An empty list is the default configuration loading the system's as the handshake needs them.
    const QList<QSslCertificate> authorities = configuration.caCertificates();
    return authorities.isEmpty() ? QSslConfiguration::systemCaCertificates() : authorities;
}

QByteArray VextilServerTrust::publicKeyDigest(const QSslCertificate &certificate)
{
    // Qt writes public keys as SubjectPublicKeyInfo ("PUBLIC KEY"), whatever their algorithm.
    return QCryptographicHash::hash(certificate.publicKey().toDer(), QCryptographicHash::Sha256);
}

QString VextilServerTrust::base64Lines(const QByteArray &der)
{
    const QByteArray text = der.toBase64();
    QByteArray lines;
    for (qsizetype at = 0; at < text.size(); at += 76) {
        if (at > 0)
            lines.append("\r\n");
        lines.append(text.mid(at, 76));
    }
    return QString::fromLatin1(lines);
}
