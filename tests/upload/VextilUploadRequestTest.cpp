#include <VextilToolkit/VextilRepository.h>

#include "TestImages.h"

#include <QFile>
#include <QRegularExpression>

#include <gtest/gtest.h>

namespace {

QImage solid(QRgb colour, int width = 32, int height = 48)
{
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(colour);
    return image;
}

VextilRepository::ImageArray images(int count, QRgb colour)
{
    auto list = std::make_shared<QList<QImage>>();
    for (int i = 0; i < count; ++i)
        list->append(solid(colour + i));
    return list;
}

// (name, category, sub_category, tag) of every metadata entry, in order.
QStringList entries(const VextilJsonValue &meta)
{
    QStringList out;
    const VextilJsonValue files = meta.value("files");  // toArray() refers into it
    for (const VextilJsonValue &e : files.toArray())
        out.append(QStringList{e.value("name").toString(), e.value("category").toString(),
                               e.value("sub_category").toString(), e.value("tag").toString()}
                       .join(' '));
    return out;
}

class UploadRequestTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        store->resetAllImages();
        store->setDocumentType(VextilDocumentTypeUnspecified);
    }
    VextilRepository *store = VextilRepository::sharedInstance();
};

TEST_F(UploadRequestTest, AFaceUploadMatchesTheReferenceBodyByteForByte)
{
    store->setFaceImages(images(1, qRgb(10, 20, 30)));
    store->setFaceSmileImages(images(1, qRgb(200, 100, 50)));
    const auto files = store->mountImagesDataWithDataType(VextilDataTypeFace);
    ASSERT_TRUE(files.has_value());
    ASSERT_EQ(files->size(), 2);

    // The JPEG bytes are replaced by fixed stand-ins, as in the reference file.
    QList<VextilFilePart> parts{{files->at(0).name, "J1"}, {files->at(1).name, "J2"}};
    const VextilMetadataField metadata{"META_INFOS", VextilRepository::jsonStringFromDict(store->mountMetaInfoWithDataType(VextilDataTypeFace))};
    const QByteArray body = VextilRepository::mountBodyDataWithMetadata(metadata, parts, "----Boundary0E5D6A6C-1B2F-4C3D-9E8F-7A6B5C4D3E2F");

    QFile golden(VEXTIL_TEST_DATA_DIR "/upload/face-upload-body.txt");
    ASSERT_TRUE(golden.open(QIODevice::ReadOnly));
    EXPECT_EQ(body, golden.readAll());
}

TEST_F(UploadRequestTest, FacesAreBestQualityJpegsNeutralFirstThenSmiling)
{
    store->setFaceImages(images(2, qRgb(0, 0, 200)));
    store->setFaceSmileImages(images(1, qRgb(200, 0, 0)));
    const auto files = store->mountImagesDataWithDataType(VextilDataTypeFace);
    ASSERT_TRUE(files.has_value());
    ASSERT_EQ(files->size(), 3);
    EXPECT_EQ(files->at(0).name, "file_1.jpeg");
    EXPECT_EQ(files->at(0).data, encodeJpeg(store->getFaceImages()->at(0), 100));
    EXPECT_EQ(files->at(2).data, encodeJpeg(store->getFaceSmileImagess()->at(0), 100));
    EXPECT_EQ(entries(store->mountMetaInfoWithDataType(VextilDataTypeFace)),
              (QStringList{"file_1.jpeg photo selfie default", "file_2.jpeg photo selfie default", "file_3.jpeg photo selfie smile"}));
}

TEST_F(UploadRequestTest, MissingFaceArraysFailTheFilesButNotTheMetadata)
{
    store->setFaceImages(images(2, qRgb(1, 1, 1)));
    EXPECT_FALSE(store->mountImagesDataWithDataType(VextilDataTypeFace).has_value()) << "smiling array is null";
    EXPECT_EQ(entries(store->mountMetaInfoWithDataType(VextilDataTypeFace)).size(), 2) << "null counts as empty";

    store->setFaceImages(std::make_shared<QList<QImage>>());
    store->setFaceSmileImages(std::make_shared<QList<QImage>>());
    const auto none = store->mountImagesDataWithDataType(VextilDataTypeFace);
    ASSERT_TRUE(none.has_value()) << "empty arrays are not missing";
    EXPECT_TRUE(none->isEmpty());
    const QString json = VextilRepository::jsonStringFromDict(store->mountMetaInfoWithDataType(VextilDataTypeFace));
    EXPECT_EQ(json, "{\n  \"files\" : [\n\n  ],\n  \"extra_info\" : {\n    \"foo\" : \"foo\"\n  }\n}");
    const QByteArray body = VextilRepository::mountBodyDataWithMetadata({"META_INFOS", json}, {}, "----B");
    EXPECT_EQ(body, "------B\r\nContent-Disposition: form-data; name=\"META_INFOS\"\r\n\r\n" + json.toUtf8() + "\r\n------B--\r\n");
}

TEST_F(UploadRequestTest, DocumentTypesSelectTheirSidesAndWords)
{
    const QImage front = solid(qRgb(0, 255, 0)), back = solid(qRgb(255, 0, 255));
    struct Case {
        VextilDocumentType type;
        bool withBack;
        int files;  // -1: the file list fails
        QStringList meta;
    };
    const Case cases[] = {
        {VextilDocumentTypeUnspecified, true, 2, {"file_1.jpeg document rg front", "file_2.jpeg document rg back"}},
        {VextilDocumentTypeUnspecified, false, 1, {"file_1.jpeg document cnh full"}},
        {VextilDocumentTypeRG, false, -1, {"file_1.jpeg document rg front", "file_2.jpeg document rg back"}},
        {VextilDocumentTypeCNH, false, 1, {"file_1.jpeg document cnh full"}},
        {VextilDocumentTypeGeneric, true, 1, {"file_1.jpeg document generic full"}},
        {VextilDocumentTypeGenericFrontBack, true, 2, {"file_1.jpeg document generic front", "file_2.jpeg document generic back"}},
        {VextilDocumentType(7), true, 0, {}},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(int(c.type));
        store->setDocumentType(c.type);
        store->setDocumentFrontImage(front);
        store->setDocumentBackImage(c.withBack ? back : QImage());
        const auto files = store->mountImagesDataWithDataType(VextilDataTypeDocument);
        EXPECT_EQ(files ? int(files->size()) : -1, c.files);
        if (files && !files->isEmpty()) {
            EXPECT_EQ(files->first().data, encodeJpeg(front, 90)) << "documents are encoded at 0.9";
        }
        EXPECT_EQ(entries(store->mountMetaInfoWithDataType(VextilDataTypeDocument)), c.meta);
    }
    store->setDocumentType(VextilDocumentTypeCNH);
    store->resetDocumentFront();
    EXPECT_FALSE(store->mountImagesDataWithDataType(VextilDataTypeDocument).has_value()) << "the front is required";
}

TEST_F(UploadRequestTest, DocumentAndFaceNumbersAcrossBothAndOtherTypesSelectNothing)
{
    store->setDocumentType(VextilDocumentTypeCNH);
    store->setDocumentFrontImage(solid(qRgb(9, 9, 9)));
    store->setFaceImages(images(1, qRgb(1, 2, 3)));
    store->setFaceSmileImages(images(1, qRgb(3, 2, 1)));
    EXPECT_EQ(entries(store->mountMetaInfoWithDataType(VextilDataTypeDocumentAndFace)),
              (QStringList{"file_1.jpeg document cnh full", "file_2.jpeg photo selfie default", "file_3.jpeg photo selfie smile"}));
    EXPECT_EQ(store->mountImagesDataWithDataType(VextilDataTypeDocumentAndFace)->size(), 3);

    const auto nothing = store->mountImagesDataWithDataType(VextilDataType(3));
    ASSERT_TRUE(nothing.has_value());
    EXPECT_TRUE(nothing->isEmpty());
    EXPECT_TRUE(entries(store->mountMetaInfoWithDataType(VextilDataType(3))).isEmpty());
}

TEST_F(UploadRequestTest, BoundariesAreFreshUpperCaseUuidsAndHeadersCarryTheKeyAsItIs)
{
    const QString a = VextilRepository::generateBoundary(), b = VextilRepository::generateBoundary();
    EXPECT_TRUE(QRegularExpression("^----Boundary[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}$").match(a).hasMatch()) << qPrintable(a);
    EXPECT_EQ(a.size(), 48);
    EXPECT_NE(a, b);

    const VextilHeaderFields headers = VextilRepository::generateHeaderWithAuthKey("Bearer? no: k3y \"as is\"", a);
    ASSERT_EQ(headers.size(), 3);
    EXPECT_EQ(headers[0], std::pair(QByteArray("Content-Type"), "multipart/form-data; boundary=" + a.toUtf8()));
    EXPECT_EQ(headers[1], std::pair(QByteArray("Authorization"), QByteArray("Bearer? no: k3y \"as is\"")));
    EXPECT_EQ(headers[2], std::pair(QByteArray("Cache-Control"), QByteArray("no-cache")));
}

TEST_F(UploadRequestTest, JsonTextEscapesLikeThePlatform)
{
    const VextilJsonValue value(VextilJsonValue::Object{{"a/b", QString("q\"\\\n\x01")}});
    EXPECT_EQ(VextilRepository::jsonStringFromDict(value), "{\n  \"a\\/b\" : \"q\\\"\\\\\\n\\u0001\"\n}");
}

}  // namespace
