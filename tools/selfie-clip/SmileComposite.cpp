#include "SmileComposite.h"

#include "detection/VextilBlazeFace.h"
#include "detection/VextilLearnedFaceDetector.h"

#include <QImage>

#include <opencv2/calib3d.hpp>
#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <cmath>
#include <optional>
#include <vector>

namespace {

std::optional<VextilBlazeFace::Face> findFace(const cv::Mat &bgr)
{
    cv::Mat bgra;
    cv::cvtColor(bgr, bgra, cv::COLOR_BGR2BGRA);
    const QImage image(bgra.data, bgra.cols, bgra.rows, int(bgra.step), QImage::Format_RGB32);
    static VextilBlazeFace detector;
    const QList<VextilBlazeFace::Face> faces = detector.detect(image);
    if (faces.isEmpty())
        return std::nullopt;
    return faces.first();
}

// Eyes, nose tip and mouth: the points that place a face and its expression.
std::vector<cv::Point2f> innerPoints(const VextilBlazeFace::Face &face)
{
    std::vector<cv::Point2f> points;
    for (int k = 0; k < 4; ++k)
        points.emplace_back(float(face.keyPoints[size_t(k)].x()), float(face.keyPoints[size_t(k)].y()));
    return points;
}

// 1 inside an oval over the face (brows to chin, cheek to cheek), falling softly to 0 outside it.
cv::Mat faceOval(cv::Size size, const VextilBlazeFace::Face &face)
{
    const QRectF box = VextilLearnedFaceDetector::faceBounds(face);
    const double side = box.width();
    cv::Mat mask = cv::Mat::zeros(size, CV_32FC1);
    const cv::Point centre(int(box.center().x()), int(box.center().y() + 0.08 * side));
    cv::ellipse(mask, centre, cv::Size(int(0.36 * side), int(0.46 * side)), 0, 0, 360, cv::Scalar(1), cv::FILLED);
    cv::GaussianBlur(mask, mask, cv::Size(0, 0), 0.06 * side);
    cv::Mat mask3;
    cv::cvtColor(mask, mask3, cv::COLOR_GRAY2BGR);
    return mask3;
}

// 1 over the mouth (lips and teeth), falling softly to 0 around it.
cv::Mat mouthPatch(cv::Size size, const VextilBlazeFace::Face &face)
{
    const QPointF eyes = face.keyPoints[1] - face.keyPoints[0], mouth = face.keyPoints[3];
    const double across = std::hypot(eyes.x(), eyes.y());
    cv::Mat mask = cv::Mat::zeros(size, CV_32FC1);
    cv::ellipse(mask, cv::Point(int(mouth.x()), int(mouth.y())), cv::Size(int(0.45 * across), int(0.22 * across)), 0, 0,
                360, cv::Scalar(1), cv::FILLED);
    cv::GaussianBlur(mask, mask, cv::Size(0, 0), 0.08 * across);
    return mask;
}

// The moved face in the neutral face's light and colour: its skin's brightness shifted to the
// neutral face's mean and in the neutral face's own colours, so that the two photos' white
// balance and exposure do not show as a patch; the mouth stays as it was, so teeth stay white.
cv::Mat inNeutralColours(const cv::Mat &moved, const cv::Mat &neutral, const cv::Mat &oval, const cv::Mat &mouth)
{
    cv::Mat inside;
    cv::extractChannel(oval, inside, 0);
    inside = inside > 0.5f;
    cv::Mat movedYcc, neutralYcc;
    cv::cvtColor(moved, movedYcc, cv::COLOR_BGR2YCrCb);
    cv::cvtColor(neutral, neutralYcc, cv::COLOR_BGR2YCrCb);
    const double brighter = cv::mean(neutralYcc, inside)[0] - cv::mean(movedYcc, inside)[0];
    std::vector<cv::Mat> own, theirs;
    movedYcc.convertTo(movedYcc, CV_32FC3);
    neutralYcc.convertTo(neutralYcc, CV_32FC3);
    cv::split(movedYcc, own);
    cv::split(neutralYcc, theirs);
    const cv::Mat skin = 1 - mouth;
    own[0] += skin * brighter;
    for (size_t c = 1; c < 3; ++c)
        own[c] = own[c].mul(mouth) + theirs[c].mul(skin);
    cv::Mat matched;
    cv::merge(own, matched);
    matched.convertTo(matched, CV_8UC3);
    cv::cvtColor(matched, matched, cv::COLOR_YCrCb2BGR);
    matched.convertTo(matched, CV_32FC3);
    return matched;
}

}  // namespace

cv::Mat SmileComposite::make(const cv::Mat &neutral, const cv::Mat &smile, std::string &error)
{
    const auto neutralFace = findFace(neutral), smileFace = findFace(smile);
    if (!neutralFace || !smileFace) {
        error = "no face found in the " + std::string(neutralFace ? "smiling" : "neutral") + " photo";
        return {};
    }
    const cv::Mat moveSmile = cv::estimateAffinePartial2D(innerPoints(*smileFace), innerPoints(*neutralFace));
    if (moveSmile.empty()) {
        error = "the two faces cannot be aligned";
        return {};
    }
    cv::Mat moved;
    cv::warpAffine(smile, moved, moveSmile, neutral.size(), cv::INTER_LINEAR, cv::BORDER_REPLICATE);
    const cv::Mat oval = faceOval(neutral.size(), *neutralFace);
    cv::Mat base;
    neutral.convertTo(base, CV_32FC3);
    const cv::Mat top = inNeutralColours(moved, neutral, oval, mouthPatch(neutral.size(), *neutralFace));
    cv::Mat blended = base.mul(cv::Scalar::all(1) - oval) + top.mul(oval);
    blended.convertTo(blended, CV_8UC3);
    return blended;
}
