#include "quick/VextilQuickPreview.h"

#include "capture/VextilPreviewPainter.h"

#include <QQuickWindow>
#include <QSGImageNode>
#include <QSGRectangleNode>
#include <QSGTransformNode>

VextilQuickPreview::VextilQuickPreview(QQuickItem *parent) : QQuickItem(parent) { setFlag(ItemHasContents); }

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

namespace {

// The mirror, holding the texture of the frame shown: an image node does not let go of an old
// texture it owns when given a new one in every Qt version, so the node is not made its owner.
struct MirrorNode : QSGTransformNode {
    std::unique_ptr<QSGTexture> texture;
};

}  // namespace

QSGNode *VextilQuickPreview::updatePaintNode(QSGNode *old, UpdatePaintNodeData *)
{
    // Black under the picture (all there is before the first frame), the mirror, the picture.
    auto *black = static_cast<QSGRectangleNode *>(old);
    if (!black) {
        black = window()->createRectangleNode();
        black->setColor(Qt::black);
        black->appendChildNode(new MirrorNode);
    }
    const QRectF area = boundingRect();
    black->setRect(area);
    auto *mirror = static_cast<MirrorNode *>(black->firstChild());
    QTransform flip;
    if (m_session && m_session->mirrored())
        flip = QTransform(-1, 0, 0, 1, area.width(), 0);
    // A transform rather than mirrored texture coordinates: the software renderer would make
    // a mirrored copy of every frame for those.
    mirror->setMatrix(QMatrix4x4(flip));

    const QImage frame = m_session ? m_session->frame() : QImage();
    const QRectF part = VextilPreviewPainter::filledPart(frame.size(), area.size());
    auto *picture = static_cast<QSGImageNode *>(mirror->firstChild());
    if (part.isEmpty()) {
        delete picture;
        mirror->texture.reset();
        return black;
    }
    std::unique_ptr<QSGTexture> texture(window()->createTextureFromImage(frame));
    texture->setFiltering(QSGTexture::Linear);
    if (!picture) {
        picture = window()->createImageNode();
        // Before the node joins the tree: the software renderer draws a node it is handed at
        // once, and one without a texture crashes it.
        picture->setTexture(texture.get());
        picture->setFiltering(QSGTexture::Linear);
        mirror->appendChildNode(picture);
    }
    picture->setTexture(texture.get());
    mirror->texture = std::move(texture);  // the earlier frame's goes
    picture->setRect(area);
    picture->setSourceRect(part);
    return black;
}
