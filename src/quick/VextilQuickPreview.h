#pragma once

#include <QPointer>
#include <QQuickItem>
#include <QtQml/qqmlregistration.h>

#include "quick/VextilQuickCaptureSession.h"

/// The live camera picture (CameraPreview): the session's newest frame, filling the item and
/// mirrored as the settings say, as the Widgets screen draws it. The frame goes to the scene
/// graph as it is, a texture drawn once per window frame: no picture of the item's own is
/// painted first and kept.
class VextilQuickPreview : public QQuickItem {
    Q_OBJECT
    QML_NAMED_ELEMENT(CameraPreview)
    Q_PROPERTY(VextilQuickCaptureSession *session READ session WRITE setSession NOTIFY sessionChanged)
public:
    explicit VextilQuickPreview(QQuickItem *parent = nullptr);

    VextilQuickCaptureSession *session() const { return m_session; }
    void setSession(VextilQuickCaptureSession *session);

Q_SIGNALS:
    void sessionChanged();

protected:
    QSGNode *updatePaintNode(QSGNode *old, UpdatePaintNodeData *) override;

private:
    QPointer<VextilQuickCaptureSession> m_session;
};
