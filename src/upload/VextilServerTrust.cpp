#include "upload/VextilServerTrust.h"

#include <QCryptographicHash>
#include <QSslKey>

VextilServerTrust::VextilServerTrust(QString refusedCertificate, QList<QByteArray> pinnedKeys)
    : m_refused(std::move(refusedCertificate)), m_pins(std::move(pinnedKeys))
{
}

bool VextilServerTrust::accepts(const QList<QSslCertificate> &chain) const
{
    if (chain.isEmpty() || (!m_refused.isEmpty() && base64Lines(chain.first().toDer()) == m_refused))
        return false;
    if (m_pins.isEmpty())
        return true;
    for (qsizetype i = 0; i < chain.size(); ++i) {
        // A certificate added to the chain but not linked to the leaf proves nothing.
        if (i > 0 && chain[i - 1].issuerDisplayName() != chain[i].subjectDisplayName())
            break;
        if (m_pins.contains(publicKeyDigest(chain[i])))
            return true;
    }
    return false;
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
