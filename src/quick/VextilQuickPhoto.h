#pragma once

#include <QPointer>
#include <QQuickPaintedItem>
#include <QtQml/qqmlregistration.h>

#include "quick/VextilQuickReview.h"

/// The review's photo (ReviewPhoto): the review model's images, whole, with rounded corners.
class VextilQuickPhoto : public QQuickPaintedItem {
    Q_OBJECT
    QML_NAMED_ELEMENT(ReviewPhoto)
    Q_PROPERTY(VextilQuickReview *review READ review WRITE setReview NOTIFY reviewChanged)
public:
    explicit VextilQuickPhoto(QQuickItem *parent = nullptr) : QQuickPaintedItem(parent) {}

    VextilQuickReview *review() const { return m_review; }
    void setReview(VextilQuickReview *review);
    void paint(QPainter *painter) override;

Q_SIGNALS:
    void reviewChanged();

private:
    QPointer<VextilQuickReview> m_review;
};
