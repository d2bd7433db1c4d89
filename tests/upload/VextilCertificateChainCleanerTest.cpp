#include "upload/VextilCertificateChainCleaner.h"

#include "TestCertificates.h"

#include <gtest/gtest.h>

namespace {

using Chain = QList<QSslCertificate>;

// A root, an intermediate under it and a leaf under that; an impostor authority that takes the
// intermediate's name, with a leaf of its own.
class ChainCleanerTest : public ::testing::Test {
protected:
    const TestIdentity root = TestCertificates::authority(QStringLiteral("Cleaner Root"));
    const TestIdentity intermediate = TestCertificates::issue(root, QStringLiteral("Cleaner Intermediate"), true);
    const TestIdentity leaf = TestCertificates::issue(intermediate, QStringLiteral("127.0.0.1"), false);
    const TestIdentity impostor = TestCertificates::authority(QStringLiteral("Cleaner Intermediate"));
    const TestIdentity impostorLeaf = TestCertificates::issue(impostor, QStringLiteral("127.0.0.1"), false);
    const TestIdentity stranger = TestCertificates::authority(QStringLiteral("Stranger"));
};

TEST_F(ChainCleanerTest, FollowsSignaturesFromTheLeafToAnAnchorAndDropsTheRest)
{
    const QSslCertificate &l = leaf.certificate, &i = intermediate.certificate, &r = root.certificate;
    // In order, out of order, with a stranger among them, with the root sent or left out.
    EXPECT_EQ(VextilCertificateChainCleaner::clean({l, i}, {r}), (Chain{l, i, r}));
    EXPECT_EQ(VextilCertificateChainCleaner::clean({l, stranger.certificate, i, r}, {r}), (Chain{l, i, r}));
    EXPECT_EQ(VextilCertificateChainCleaner::clean({l, r, i}, {r}), (Chain{l, i, r}));
    // An anchor that is not a root ends the path when nothing above it is known.
    EXPECT_EQ(VextilCertificateChainCleaner::clean({l, i}, {i}), (Chain{l, i}));
    EXPECT_EQ(VextilCertificateChainCleaner::clean({l}, {i, r}), (Chain{l, i, r}));
    // A self-signed server trusted as its own authority.
    EXPECT_EQ(VextilCertificateChainCleaner::clean({r}, {r}), (Chain{r}));
}

TEST_F(ChainCleanerTest, NamesAloneLinkNothing)
{
    const QSslCertificate &i = intermediate.certificate, &r = root.certificate;
    EXPECT_TRUE(VextilCertificateChainCleaner::isSignedBy(leaf.certificate, i));
    EXPECT_FALSE(VextilCertificateChainCleaner::isSignedBy(leaf.certificate, impostor.certificate))
        << "same name, other key";
    EXPECT_FALSE(VextilCertificateChainCleaner::isSignedBy(impostorLeaf.certificate, i));
    // The impostor's leaf with the genuine chain behind it reaches the impostor, never them.
    EXPECT_EQ(VextilCertificateChainCleaner::clean({impostorLeaf.certificate, i, r}, {r, impostor.certificate}),
              (Chain{impostorLeaf.certificate, impostor.certificate}));
    EXPECT_TRUE(VextilCertificateChainCleaner::clean({impostorLeaf.certificate, i, r}, {r}).isEmpty());
    EXPECT_TRUE(VextilCertificateChainCleaner::clean({leaf.certificate, i}, {stranger.certificate}).isEmpty());
    EXPECT_TRUE(VextilCertificateChainCleaner::clean({}, {r}).isEmpty());
    EXPECT_TRUE(VextilCertificateChainCleaner::clean({QSslCertificate()}, {r}).isEmpty());
}

}  // namespace
