#pragma once

#include <VextilToolkit/VextilToolkitExport.h>

#include <QImage>
#include <QList>
#include <QObject>
#include <QSizeF>
#include <QTimer>

class QPainter;

/// The review's photo: a still (a document side), or the face images played in a loop, the
/// whole list once a second whatever its length. Drawn whole, as large as the area allows, with
/// rounded corners. Shared by the review screens of both faces; GUI thread.
/// Exported for the Qt Quick module; not part of the toolkit's API.
class VEXTIL_EXPORT VextilPhotoAnimation : public QObject {
    Q_OBJECT
public:
    explicit VextilPhotoAnimation(QObject *parent = nullptr);

    void setStill(const QImage &image);
    /// Starts playing the images (stops with none).
    void setFrames(const QList<QImage> &frames);
    QList<QImage> frames() const { return m_frames; }
    /// What shows now: the current frame, or the still without frames.
    QImage currentImage() const;
    /// Draws the current image fitted and centred in an area of that size.
    void paint(QPainter &painter, QSizeF area) const;

Q_SIGNALS:
    void changed();

private:
    QImage m_still;
    QList<QImage> m_frames;
    int m_frame = 0;
    QTimer m_timer;
};
