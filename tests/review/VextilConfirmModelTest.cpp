#include <VextilToolkit/VextilConfirmModel.h>
#include <VextilToolkit/VextilRepository.h>

#include "TestImages.h"

#include <gtest/gtest.h>

#include <QImage>
#include <QPainter>

namespace {

// Records what the model pushes.
class Receiver : public QObject, public VextilConfirmModelDelegate {
public:
    void setDocumentImage(const QImage &image) override { document = image; }
    void setFaceImages(std::shared_ptr<QList<QImage>> images) override
    {
        faces = std::move(images);
        ++faceCalls;
    }
    QImage document;
    std::shared_ptr<QList<QImage>> faces;
    int faceCalls = 0;
};

// Records the review's answers.
TEST(ConfirmModel, ClearDataDropsExactlyWhatTheReviewShowed)
{
    // What each review clears: the faces for a selfie, one side for a document, nothing for a
    // side the store does not know. Everything else in the store stays.
    struct Case {
        const char *name;
        bool document;
        VextilDocumentSide side;
        bool facesKept, frontKept, backKept;
    };
    const Case cases[] = {
        {"selfie", false, VextilDocumentSideFront, false, true, true},
        {"front", true, VextilDocumentSideFront, true, false, true},
        {"back", true, VextilDocumentSideBack, true, true, false},
        {"unknown side", true, VextilDocumentSide(2), true, true, true},
    };
    auto *store = VextilRepository::sharedInstance();
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        store->setFaceImages(images(5, qRgb(10, 0, 0)));
        store->setFaceSmileImages(images(2, qRgb(200, 0, 0)));
        store->setDocumentFrontImage(solid(qRgb(0, 255, 0)));
        store->setDocumentBackImage(solid(qRgb(0, 0, 255)));
        VextilConfirmModel model;
        model.isDocument(c.document);
        model.setDocumentSide(c.side);
        model.clearData();
        EXPECT_EQ(store->getFaceImages() != nullptr, c.facesKept);
        EXPECT_EQ(store->getFaceSmileImagess() != nullptr, c.facesKept);
        EXPECT_EQ(store->hasDocumentFrontImage(), c.frontKept);
        EXPECT_EQ(store->hasDocumentBackImage(), c.backKept);
    }
}

TEST(ConfirmModel, SelfieShowsNeutralThenSmilingAndDocumentSidesDifferOnPurpose)
{
    auto *store = VextilRepository::sharedInstance();
    store->setFaceImages(images(5, qRgb(10, 0, 0)));
    store->setFaceSmileImages(images(2, qRgb(200, 0, 0)));
    VextilConfirmModel model;
    Receiver receiver;
    model.setDelegate(&receiver);
    EXPECT_EQ(model.getNavigationTitle(), "Send selfie");
    EXPECT_EQ(model.getMessageText(), "Do you want to submit this video for review?");
    EXPECT_EQ(model.getAcceptButtonText(), "Yes, send");

    model.getImages();
    ASSERT_NE(receiver.faces, nullptr);
    ASSERT_EQ(receiver.faces->size(), 7);
    EXPECT_EQ(receiver.faces->at(0), store->getFaceImages()->at(0));
    EXPECT_EQ(receiver.faces->at(5), store->getFaceSmileImagess()->at(0));

    model.clearData();
    model.getImages();
    EXPECT_EQ(receiver.faces, nullptr) << "after the reset the delegate receives null";

    model.isDocument(true);
    model.setDocumentSide(VextilDocumentSide(2));
    store->setDocumentFrontImage(solid(qRgb(0, 255, 0)));
    store->setDocumentBackImage(solid(qRgb(0, 0, 255)));
    EXPECT_EQ(model.getAcceptButtonText(), "Yes, send document");
    model.getImages();
    EXPECT_EQ(receiver.document, store->getDocumentBackImage()) << "any side but the front shows the back";
}

}  // namespace
