#pragma once

#include <QImage>
#include <QList>
#include <QRect>
#include <QString>

// One labelled portrait of tests/data/faces.
struct LabelledPhoto {
    QString file;   // file name in the faces folder
    QString smile;  // "yes", "no" or "slight"
    QRect face;     // labelled face box, origin top left
};

// Reads labels.csv; fails loudly (empty list) when the data is missing.
QList<LabelledPhoto> loadLabelledPhotos();
// The photo as a 32-bit image, like a camera frame.
QImage loadPhoto(const LabelledPhoto &photo);
// Intersection over union of two boxes.
double intersectionOverUnion(const QRectF &a, const QRectF &b);
// Converts detector bounds (origin bottom left) to top-left coordinates in an image this high.
QRectF topLeftBounds(const QRectF &bottomLeftBounds, int imageHeight);
