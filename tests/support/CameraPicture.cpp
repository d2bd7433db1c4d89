#include "CameraPicture.h"

#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>

QImage cameraPicture(bool smiling, QSize size)
{
    QImage picture(size, QImage::Format_RGB32);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    const double w = size.width(), h = size.height();
    QLinearGradient wall(0, 0, w, h);
    wall.setColorAt(0, QColor(188, 196, 204));
    wall.setColorAt(1, QColor(120, 132, 150));
    painter.fillRect(picture.rect(), wall);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(40, 64, 110));  // shoulders
    painter.drawEllipse(QRectF(w * 0.08, h * 0.70, w * 0.84, h * 0.5));
    painter.setBrush(QColor(150, 104, 78));  // neck and face
    painter.drawRect(QRectF(w * 0.42, h * 0.55, w * 0.16, h * 0.18));
    painter.drawEllipse(QRectF(w * 0.28, h * 0.26, w * 0.44, h * 0.36));
    painter.setBrush(QColor(44, 30, 24));  // hair
    painter.drawChord(QRectF(w * 0.27, h * 0.24, w * 0.46, h * 0.22), 0, 180 * 16);
    painter.setBrush(QColor(30, 24, 20));  // eyes
    painter.drawEllipse(QRectF(w * 0.39, h * 0.40, w * 0.05, h * 0.022));
    painter.drawEllipse(QRectF(w * 0.56, h * 0.40, w * 0.05, h * 0.022));
    QPainterPath mouth;
    mouth.moveTo(w * 0.42, h * 0.515);
    if (smiling) {
        mouth.quadTo(w * 0.50, h * 0.57, w * 0.58, h * 0.515);
        mouth.quadTo(w * 0.50, h * 0.535, w * 0.42, h * 0.515);
        painter.setBrush(QColor(245, 240, 232));
        painter.setPen(QPen(QColor(110, 40, 40), w * 0.006));
    } else {
        mouth.lineTo(w * 0.58, h * 0.515);
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(QColor(110, 50, 45), w * 0.008, Qt::SolidLine, Qt::RoundCap));
    }
    painter.drawPath(mouth);
    return picture;
}
