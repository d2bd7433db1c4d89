#include "upload/VextilCertificateChainCleaner.h"

#include <openssl/x509.h>

#include <memory>
#include <optional>

namespace {

struct X509Free {
    void operator()(X509 *certificate) const { X509_free(certificate); }
};
using X509Ptr = std::unique_ptr<X509, X509Free>;

X509Ptr toX509(const QSslCertificate &certificate)
{
    const QByteArray der = certificate.toDer();
    const auto *data = reinterpret_cast<const unsigned char *>(der.constData());
    return X509Ptr(d2i_X509(nullptr, &data, long(der.size())));
}

std::optional<qsizetype> signerIn(const QList<QSslCertificate> &candidates, const QSslCertificate &subject)
{
    for (qsizetype i = 0; i < candidates.size(); ++i)
        if (VextilCertificateChainCleaner::isSignedBy(subject, candidates[i]))
            return i;
    return std::nullopt;
}

}  // namespace

bool VextilCertificateChainCleaner::isSignedBy(const QSslCertificate &subject, const QSslCertificate &issuer)
{
    const X509Ptr child = toX509(subject), parent = toX509(issuer);
    if (!child || !parent || X509_NAME_cmp(X509_get_issuer_name(child.get()), X509_get_subject_name(parent.get())) != 0)
        return false;
    EVP_PKEY *key = X509_get0_pubkey(parent.get());
    return key && X509_verify(child.get(), key) == 1;
}

QList<QSslCertificate> VextilCertificateChainCleaner::clean(const QList<QSslCertificate> &presented,
                                                            const QList<QSslCertificate> &anchors)
{
    if (presented.isEmpty())
        return {};
    QList<QSslCertificate> path{presented.first()};
    QList<QSslCertificate> queue = presented.mid(1);
    bool anchored = false;
    for (int step = 0; step < kMaxSigners; ++step) {
        const QSslCertificate last = path.last();
        if (const auto anchor = signerIn(anchors, last)) {
            // A leaf that is itself an anchor (a self-signed server trusted as such) appears once.
            if (path.size() > 1 || anchors[*anchor] != last)
                path.append(anchors[*anchor]);
            if (isSignedBy(anchors[*anchor], anchors[*anchor]))
                return path;
            anchored = true;
            continue;
        }
        if (const auto signer = signerIn(queue, last)) {
            path.append(queue.takeAt(*signer));
            continue;
        }
        break;
    }
    return anchored ? path : QList<QSslCertificate>{};
}
