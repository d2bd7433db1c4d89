#pragma once

#include <QImage>
#include <QRectF>
#include <QString>

#include <array>
#include <memory>

/// Classifies a face's expression with a small densely connected network (four blocks of
/// 32, 64, 128 and 256 channels, 7x7 average pooling, a 7-way softmax), built on OpenCV's DNN
/// module from uint8-quantised weights (value = minimum + scale x byte, per tensor).
///
/// Input: the face crop padded to a centred square, resized to 112x112 (bilinear; a crop more
/// than twice that size is first scaled to twice the size, then averaged 2x2, so that sensor
/// noise does not alias), RGB, minus the mean (122.782, 117.001, 104.298), divided by 255.
class VextilFaceExpressionNet {
public:
    /// Probabilities in this order.
    enum Expression { Neutral, Happy, Sad, Angry, Fearful, Disgusted, Surprised };
    using Probabilities = std::array<float, 7>;

    /// Loads the weights compiled into the toolkit.
    VextilFaceExpressionNet();
    /// Loads the weights manifest (JSON) and the weights file it describes; check isLoaded().
    VextilFaceExpressionNet(const QString &manifestPath, const QString &weightsPath);
    ~VextilFaceExpressionNet();

    bool isLoaded() const;
    /// Why loading failed; empty when it succeeded.
    QString errorString() const;
    /// The expression of the face in `face` (image pixels, origin top left); all zeros when the
    /// network is not loaded or the rectangle misses the image.
    Probabilities classify(const QImage &image, const QRectF &face);

private:
    struct Private;
    std::unique_ptr<Private> d;
};
