#include "core/VextilImages.h"

#include <QFile>
#include <QPainter>
#include <QSvgRenderer>

namespace {
QString pathOf(const QString &name) { return QStringLiteral(":/VextilToolkit/images/%1.svg").arg(name); }
}

bool VextilImages::exists(const QString &name) { return QFile::exists(pathOf(name)); }

QSizeF VextilImages::naturalSize(const QString &name)
{
    if (!exists(name))
        return {};
    return QSvgRenderer(pathOf(name)).defaultSize();
}

QImage VextilImages::render(const QString &name, QSizeF size, qreal devicePixelRatio, QColor tint)
{
    QSvgRenderer svg(pathOf(name));
    const QSize pixels = (size * devicePixelRatio).toSize();
    if (!svg.isValid() || pixels.isEmpty())
        return {};
    QImage image(pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    svg.render(&painter, QRectF(QPointF(0, 0), QSizeF(pixels)));
    if (tint.isValid()) {
        painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
        painter.fillRect(image.rect(), tint);
    }
    painter.end();
    image.setDevicePixelRatio(devicePixelRatio);
    return image;
}
