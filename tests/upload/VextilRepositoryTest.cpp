#include <VextilToolkit/VextilRepository.h>

#include <QCoreApplication>
#include <QThread>

#include <gtest/gtest.h>

#include <thread>
#include <vector>

namespace {

// Every test runs in a process of its own, so each sees the store as the host first does.
VextilRepository *store() { return VextilRepository::sharedInstance(); }

QImage solid(QRgb colour)
{
    QImage image(4, 4, QImage::Format_RGB32);
    image.fill(colour);
    return image;
}

TEST(Repository, AFreshStoreHoldsNothing)
{
    EXPECT_EQ(store()->getFaceImages(), nullptr);
    EXPECT_EQ(store()->getFaceSmileImagess(), nullptr);
    EXPECT_FALSE(store()->hasDocumentFrontImage());
    EXPECT_FALSE(store()->hasDocumentBackImage());
    EXPECT_FALSE(store()->hasAllDocument());
    EXPECT_EQ(store()->getProgress(), 0.0);
    EXPECT_EQ(store()->documentType(), VextilDocumentTypeUnspecified);
    EXPECT_FALSE(store()->authKey().has_value());
    EXPECT_FALSE(store()->resultData().has_value());
    EXPECT_FALSE(store()->error().has_value());
}

TEST(Repository, IsOneInstanceEvenUnderConcurrentFirstCalls)
{
    std::vector<VextilRepository *> seen(8, nullptr);
    std::vector<std::thread> threads;
    for (size_t i = 0; i < seen.size(); ++i)
        threads.emplace_back([&seen, i] { seen[i] = VextilRepository::sharedInstance(); });
    for (std::thread &t : threads)
        t.join();
    for (VextilRepository *s : seen)
        EXPECT_EQ(s, store());
    EXPECT_EQ(store()->thread(), QCoreApplication::instance()->thread()) << "the store lives on the GUI thread";
}

TEST(Repository, KeepsFaceArraysByReference)
{
    auto faces = std::make_shared<QList<QImage>>();
    store()->setFaceImages(faces);
    faces->append(solid(qRgb(1, 2, 3)));
    ASSERT_EQ(store()->getFaceImages(), faces);
    EXPECT_EQ(store()->getFaceImages()->size(), 1) << "the owner's later append shows through the store";

    auto smiles = std::make_shared<QList<QImage>>();
    store()->setFaceSmileImages(smiles);
    EXPECT_NE(store()->getFaceSmileImagess(), nullptr);
    EXPECT_TRUE(store()->getFaceSmileImagess()->isEmpty()) << "empty is not null";
}

TEST(Repository, ResettersSetNullAndLeaveTheRestAlone)
{
    store()->setFaceImages(std::make_shared<QList<QImage>>(QList<QImage>{solid(qRgb(9, 9, 9))}));
    store()->setFaceSmileImages(std::make_shared<QList<QImage>>());
    store()->setDocumentFrontImage(solid(qRgb(255, 0, 0)));
    store()->setDocumentBackImage(solid(qRgb(0, 255, 0)));
    store()->setDocumentType(VextilDocumentTypeCNH);
    store()->setAuthKey(QStringLiteral("key"));
    store()->setResultData(QVariantMap{{QStringLiteral("token"), QStringLiteral("t")}});
    store()->setError(VextilError{QStringLiteral("com.VextilToolkit"), 423, QStringLiteral("d"), QStringLiteral("r")});
    store()->setProgress(0.5);
    EXPECT_TRUE(store()->hasAllDocument());

    store()->resetDocumentBack();
    EXPECT_TRUE(store()->hasDocumentFrontImage());
    EXPECT_FALSE(store()->hasAllDocument()) << "one side is not the whole document";

    store()->resetAllImages();
    EXPECT_EQ(store()->getFaceImages(), nullptr);
    EXPECT_EQ(store()->getFaceSmileImagess(), nullptr);
    EXPECT_TRUE(store()->getDocumentFrontImage().isNull());
    EXPECT_EQ(store()->documentType(), VextilDocumentTypeCNH);
    EXPECT_EQ(store()->authKey(), QStringLiteral("key"));
    EXPECT_TRUE(store()->resultData().has_value());
    EXPECT_EQ(store()->error()->code, 423);
    EXPECT_EQ(store()->getProgress(), 0.5);

    store()->setAuthKey(std::nullopt);
    EXPECT_FALSE(store()->authKey().has_value()) << "null clears the key";
    store()->setAuthKey(QString());
    EXPECT_TRUE(store()->authKey().has_value()) << "an empty key is still a key";
}

}  // namespace
