#pragma once

#include <QList>
#include <QSslCertificate>

/// Rebuilds the chain that actually vouches for a server: from its leaf, each next certificate
/// is the one whose key signed the last, taken from the trust anchors first and from what the
/// server presented next, until a self-signed anchor (or the presented certificates run out
/// after an anchor was reached). Certificates the server sent but that sign nothing in that
/// path are dropped, so a pin can only match a key that really stands behind the leaf.
class VextilCertificateChainCleaner {
public:
    /// The verified path, leaf first; empty when no anchor is reached by signatures.
    static QList<QSslCertificate> clean(const QList<QSslCertificate> &presented, const QList<QSslCertificate> &anchors);

    /// Whether `issuer` names and signed `subject` (its signature checks out with the issuer's key).
    static bool isSignedBy(const QSslCertificate &subject, const QSslCertificate &issuer);

    /// Longest path followed, as a guard against loops in what a server sends.
    static constexpr int kMaxSigners = 9;
};
