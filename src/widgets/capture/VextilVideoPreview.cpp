#include "widgets/capture/VextilVideoPreview.h"

#include "capture/VextilPreviewPainter.h"

#include <QPainter>

VextilVideoPreview::VextilVideoPreview(QWidget *parent) : QWidget(parent)
{
    setAttribute(Qt::WA_OpaquePaintEvent);
}

void VextilVideoPreview::setFrame(const QImage &frame)
{
    m_frame = frame;
    update();
}

void VextilVideoPreview::setMirrored(bool mirrored)
{
    m_mirrored = mirrored;
    update();
}

void VextilVideoPreview::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    VextilPreviewPainter::paint(painter, size(), m_frame, m_mirrored);
}
