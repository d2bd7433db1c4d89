#include "quick/VextilQuickPreview.h"

#include "capture/VextilPreviewPainter.h"

#include <QPainter>

VextilQuickPreview::VextilQuickPreview(QQuickItem *parent) : QQuickPaintedItem(parent) { setOpaquePainting(true); }

void VextilQuickPreview::setSession(VextilQuickCaptureSession *session)
{
    if (session == m_session)
        return;
    if (m_session)
        disconnect(m_session, nullptr, this, nullptr);
    m_session = session;
    if (session)
        connect(session, &VextilQuickCaptureSession::frameChanged, this, [this] { update(); });
    Q_EMIT sessionChanged();
    update();
}

void VextilQuickPreview::paint(QPainter *painter)
{
    const QImage frame = m_session ? m_session->frame() : QImage();
    VextilPreviewPainter::paint(*painter, size(), frame, m_session && m_session->mirrored());
}
