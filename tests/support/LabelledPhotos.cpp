#include "LabelledPhotos.h"

#include <QFile>
#include <QTextStream>

namespace {
QString facesDir() { return QStringLiteral(VEXTIL_TEST_DATA_DIR "/faces/"); }
}

QList<LabelledPhoto> loadLabelledPhotos()
{
    QFile file(facesDir() + QStringLiteral("labels.csv"));
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return {};
    QTextStream in(&file);
    in.readLine();  // column names
    QList<LabelledPhoto> photos;
    while (!in.atEnd()) {
        const QStringList cells = in.readLine().split(QLatin1Char(','));
        if (cells.size() < 6)
            continue;
        photos.append({cells[0], cells[1], QRect(cells[2].toInt(), cells[3].toInt(), cells[4].toInt(), cells[5].toInt())});
    }
    return photos;
}

QImage loadPhoto(const LabelledPhoto &photo)
{
    return QImage(facesDir() + photo.file).convertToFormat(QImage::Format_RGB32);
}

double intersectionOverUnion(const QRectF &a, const QRectF &b)
{
    const QRectF overlap = a.intersected(b);
    const double shared = overlap.width() * overlap.height();
    const double all = a.width() * a.height() + b.width() * b.height() - shared;
    return all > 0 ? shared / all : 0.0;
}

QRectF topLeftBounds(const QRectF &bounds, int imageHeight)
{
    return QRectF(bounds.x(), imageHeight - bounds.y() - bounds.height(), bounds.width(), bounds.height());
}
