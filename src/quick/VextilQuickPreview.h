#pragma once

#include <QPointer>
#include <QQuickPaintedItem>
#include <QtQml/qqmlregistration.h>

#include "quick/VextilQuickCaptureSession.h"

/// The live camera picture (CameraPreview): the session's newest frame, filling the item and
/// mirrored as the settings say, drawn as the Widgets screen draws it.
class VextilQuickPreview : public QQuickPaintedItem {
    Q_OBJECT
    QML_NAMED_ELEMENT(CameraPreview)
    Q_PROPERTY(VextilQuickCaptureSession *session READ session WRITE setSession NOTIFY sessionChanged)
public:
    explicit VextilQuickPreview(QQuickItem *parent = nullptr);

    VextilQuickCaptureSession *session() const { return m_session; }
    void setSession(VextilQuickCaptureSession *session);
    void paint(QPainter *painter) override;

Q_SIGNALS:
    void sessionChanged();

private:
    QPointer<VextilQuickCaptureSession> m_session;
};
