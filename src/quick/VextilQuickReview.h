#pragma once

#include <VextilToolkit/VextilConfirmModel.h>
#include <VextilToolkit/VextilConfirmModelDelegate.h>

#include <QObject>
#include <QtQml/qqmlregistration.h>

#include "review/VextilPhotoAnimation.h"

/// The review screen's model for QML (ReviewModel): its texts, and the captured images playing
/// as the Widgets review plays them. load() takes fresh images from the store; discard() drops
/// them (a retake).
class VextilQuickReview : public QObject, public VextilConfirmModelDelegate {
    Q_OBJECT
    QML_NAMED_ELEMENT(ReviewModel)
    Q_PROPERTY(QString title READ title CONSTANT)
    Q_PROPERTY(QString message READ message CONSTANT)
    Q_PROPERTY(QString acceptText READ acceptText CONSTANT)
    Q_PROPERTY(QString cancelText READ cancelText CONSTANT)
    /// How many images play.
    Q_PROPERTY(int imageCount READ imageCount NOTIFY imagesChanged)
public:
    explicit VextilQuickReview(QObject *parent = nullptr);

    QString title() const { return m_model.getNavigationTitle(); }
    QString message() const { return m_model.getMessageText(); }
    QString acceptText() const { return m_model.getAcceptButtonText(); }
    QString cancelText() const { return m_model.getCancelButtonText(); }
    int imageCount() const { return int(m_photo.frames().size()); }
    VextilPhotoAnimation *photo() { return &m_photo; }

    Q_INVOKABLE void load();
    Q_INVOKABLE void discard();

    void setDocumentImage(const QImage &image) override { m_photo.setStill(image); }
    void setFaceImages(std::shared_ptr<QList<QImage>> images) override;

Q_SIGNALS:
    void imagesChanged();

private:
    VextilConfirmModel m_model;
    VextilPhotoAnimation m_photo;
};
