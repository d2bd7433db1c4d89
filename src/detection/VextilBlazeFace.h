#pragma once

#include <QImage>
#include <QList>
#include <QPointF>
#include <QRectF>
#include <QString>

#include <array>
#include <memory>

/// Finds faces with MediaPipe's BlazeFace "front" network on OpenCV's DNN module.
///
/// The image is scaled, keeping its aspect, into the middle of a black 128x128 square (RGB,
/// values mapped to [-1, 1]). Each of the 896 anchors (a 16x16 grid with 2 anchors per cell and
/// an 8x8 grid with 6) gives a score (through a sigmoid) and a box and six key points as offsets
/// from the anchor's cell centre in input pixels. Detections above the score threshold that
/// overlap by at least 0.3 IoU are merged into their score-weighted mean.
class VextilBlazeFace {
public:
    struct Face {
        QRectF bounds;                     ///< image pixels, origin top left
        std::array<QPointF, 6> keyPoints;  ///< right eye, left eye, nose tip, mouth, right ear, left ear
        float score = 0;                   ///< confidence, 0 to 1
    };

    /// Loads the model compiled into the toolkit.
    VextilBlazeFace();
    /// Loads a model from a file or Qt resource path; check isLoaded().
    explicit VextilBlazeFace(const QString &modelPath);
    ~VextilBlazeFace();

    bool isLoaded() const;
    /// Why loading failed; empty when it succeeded.
    QString errorString() const;
    /// Faces scoring at least minimumScore, the largest first.
    QList<Face> detect(const QImage &image, float minimumScore = 0.5f);

    /// Resource path of the built-in model.
    static QString builtInModel();

private:
    struct Private;
    std::unique_ptr<Private> d;
};
