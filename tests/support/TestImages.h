#pragma once

#include <QBuffer>
#include <QByteArray>
#include <QImage>
#include <QList>

#include <memory>

// JPEG bytes of an image at a quality, encoded independently of the code under test.
inline QByteArray encodeJpeg(const QImage &image, int quality)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "JPEG", quality);
    return bytes;
}

// A small picture of one colour.
inline QImage solid(QRgb colour)
{
    QImage image(30, 40, QImage::Format_RGB32);
    image.fill(colour);
    return image;
}

// `count` small pictures of neighbouring colours from `base` on.
inline std::shared_ptr<QList<QImage>> images(int count, QRgb base)
{
    auto list = std::make_shared<QList<QImage>>();
    for (int i = 0; i < count; ++i)
        list->append(solid(base + QRgb(i)));
    return list;
}
