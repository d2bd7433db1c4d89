#pragma once

#include <QImage>
#include <QPointer>
#include <QQuickPaintedItem>
#include <QtQml/qqmlregistration.h>

class QQuickItemGrabResult;

/// What lies beneath the tutorial (BlurredBackdrop): a picture of the source item taken as the
/// tutorial opens, blurred as the Widgets tutorial blurs it, and darkened.
class VextilQuickBackdrop : public QQuickPaintedItem {
    Q_OBJECT
    QML_NAMED_ELEMENT(BlurredBackdrop)
    Q_PROPERTY(QQuickItem *source READ source WRITE setSource NOTIFY sourceChanged)
public:
    explicit VextilQuickBackdrop(QQuickItem *parent = nullptr);

    QQuickItem *source() const { return m_source; }
    void setSource(QQuickItem *source);
    /// Takes the picture of the source again.
    Q_INVOKABLE void capture();
    void paint(QPainter *painter) override;

Q_SIGNALS:
    void sourceChanged();

private:
    QPointer<QQuickItem> m_source;
    QSharedPointer<QQuickItemGrabResult> m_grab;
    QImage m_picture;
};
