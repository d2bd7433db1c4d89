#pragma once

#include <QObject>
#include <QRectF>
#include <QtQml/qqmlregistration.h>

/// The screens' shared geometry for QML (PortraitLayout, a singleton), the same rules the
/// Widgets screens lay out by.
class VextilQuickLayout : public QObject {
    Q_OBJECT
    QML_NAMED_ELEMENT(PortraitLayout)
    QML_SINGLETON
public:
    explicit VextilQuickLayout(QObject *parent = nullptr) : QObject(parent) {}

    /// The phone-shaped region centred in a window of that size, where a screen draws.
    Q_INVOKABLE QRectF region(double width, double height) const;
    /// The camera view centred in the room between the bar and the progress box: never much
    /// wider than tall, so the face frame's ticks stay whole.
    Q_INVOKABLE QRectF cameraView(double width, double height) const;
};
