#pragma once

#include <QBuffer>
#include <QByteArray>
#include <QImage>

// JPEG bytes of an image at a quality, encoded independently of the code under test.
inline QByteArray encodeJpeg(const QImage &image, int quality)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "JPEG", quality);
    return bytes;
}
