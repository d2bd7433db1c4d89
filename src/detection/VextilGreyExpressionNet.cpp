#include "detection/VextilGreyExpressionNet.h"

#include "detection/VextilImageMat.h"

#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <cmath>

namespace {

constexpr int kInput = 64;
constexpr int kHappy = 3;  // angry, disgusted, fearful, happy, sad, surprised, neutral
// The network was taught on faces framed a little wider than a face detector's box.
constexpr double kFraming = 1.2;
// Mean and standard deviation every face is brought to, in 8-bit grey levels.
constexpr double kMidGrey = 128;
constexpr double kContrast = 55;

float logOdds(float p)
{
    const float clamped = std::clamp(p, 1e-6f, 1 - 1e-6f);
    return std::log(clamped / (1 - clamped));
}

// Light and camera contrast vary far more than between the faces the network was taught on:
// every face is brought to the same mid grey and contrast, so that a dim or washed-out smile
// reads like a well-lit one.
void normaliseLight(cv::Mat &grey)
{
    cv::Scalar mean, deviation;
    cv::meanStdDev(grey, mean, deviation);
    const double gain = kContrast / std::max(deviation[0], 1.0);
    grey.convertTo(grey, -1, gain, kMidGrey - mean[0] * gain);
}

}  // namespace

VextilGreyExpressionNet::VextilGreyExpressionNet()
    : VextilGreyExpressionNet(QStringLiteral(":/VextilToolkit/models/grey-expression/emotion.json"),
                              QStringLiteral(":/VextilToolkit/models/grey-expression/emotion.bin"))
{
}

VextilGreyExpressionNet::VextilGreyExpressionNet(const QString &modelPath, const QString &weightsPath)
    : m_model(modelPath, weightsPath)
{
}

// Fills m_input with the framed face, 64x64 grey; false when there is nothing to read.
bool VextilGreyExpressionNet::crop(const QImage &image, const QRectF &faceBox)
{
    const double side = kFraming * std::max(faceBox.width(), faceBox.height());
    const QPointF centre = faceBox.center();
    const QRect region = QRectF(centre.x() - side / 2, centre.y() - side / 2, side, side).toAlignedRect().intersected(image.rect());
    if (!isLoaded() || image.isNull() || side < 8 || region.width() < 4 || region.height() < 4)
        return false;
    const VextilImageMat pixels(image);
    m_region = pixels.bgrx()(cv::Rect(region.x(), region.y(), region.width(), region.height()));
    cv::cvtColor(m_region, m_grey, cv::COLOR_BGRA2GRAY);
    // Averaging down to twice the input size first keeps sensor noise from aliasing.
    const double shrink = std::min(1.0, 2.0 * kInput / side);
    cv::resize(m_grey, m_small, cv::Size(), shrink, shrink, shrink < 1 ? cv::INTER_AREA : cv::INTER_LINEAR);
    // Framing that runs off the image repeats its edge rather than adding a black border.
    const double scale = kInput / (side * shrink);
    const double originX = (centre.x() - region.x()) * shrink, originY = (centre.y() - region.y()) * shrink;
    const cv::Matx23d toInput(scale, 0, kInput / 2.0 - originX * scale, 0, scale, kInput / 2.0 - originY * scale);
    cv::warpAffine(m_small, m_input, toInput, cv::Size(kInput, kInput), cv::INTER_LINEAR, cv::BORDER_REPLICATE);
    normaliseLight(m_input);
    return true;
}

float VextilGreyExpressionNet::smileLogOdds(const QImage &image, const QRectF &faceBox)
{
    if (!crop(image, faceBox))
        return 0;
    // Grey values mapped to [-1, 1].
    m_blob = cv::dnn::blobFromImage(m_input, 2.0 / 255, cv::Size(), cv::Scalar(127.5));
    m_model.net().setInput(m_blob);
    return logOdds(m_model.net().forward().at<float>(0, kHappy));
}
