#include "detection/VextilLearnedFaceDetector.h"

#include "detection/VextilCascadeFaceDetector.h"

#include <QLoggingCategory>

#include <cmath>

Q_DECLARE_LOGGING_CATEGORY(lcVextilDetector)  // defined with the cascade detector

struct VextilLearnedFaceDetector::Networks {
    VextilBlazeFace faces;
    VextilGreyExpressionNet expressions;

    QString errorString() const { return !faces.isLoaded() ? faces.errorString() : expressions.errorString(); }
};

VextilLearnedFaceDetector::VextilLearnedFaceDetector(float smileThreshold)
    : m_load([] { return std::make_unique<Networks>(); }), m_smileThreshold(smileThreshold)
{
    networks();
}

VextilLearnedFaceDetector::VextilLearnedFaceDetector(const QString &faceModel, const QString &expressionModel,
                                                     const QString &expressionWeights, float smileThreshold)
    : m_load([=] {
          return std::unique_ptr<Networks>(
              new Networks{VextilBlazeFace(faceModel), VextilGreyExpressionNet(expressionModel, expressionWeights)});
      }),
      m_smileThreshold(smileThreshold)
{
    networks();
}

VextilLearnedFaceDetector::~VextilLearnedFaceDetector() = default;

VextilLearnedFaceDetector::Networks *VextilLearnedFaceDetector::networks()
{
    if (!m_networks && m_error.isEmpty()) {
        m_networks = m_load();
        m_error = m_networks->errorString();
        if (!m_error.isEmpty())
            m_networks.reset();
    }
    return m_networks.get();
}

void VextilLearnedFaceDetector::releaseResources()
{
    m_networks.reset();
    m_tracked.reset();
}

std::shared_ptr<VextilFaceDetector> VextilLearnedFaceDetector::createOrFallBack(std::shared_ptr<VextilLearnedFaceDetector> learned)
{
    if (learned && learned->isLoaded())
        return learned;
    qCWarning(lcVextilDetector).noquote() << "the learned face detector is unavailable, using the cascade detector:"
                                          << (learned ? learned->errorString() : QStringLiteral("none given"));
    return std::make_shared<VextilCascadeFaceDetector>();
}

QList<float> VextilLearnedFaceDetector::smileScores(const QImage &image)
{
    QList<float> scores;
    if (!networks())
        return scores;
    for (const VextilBlazeFace::Face &face : m_networks->faces.detect(image))
        scores.append(smile(image, face));
    return scores;
}

float VextilLearnedFaceDetector::smile(const QImage &image, const VextilBlazeFace::Face &face)
{
    return m_networks->expressions.smileLogOdds(image, face.bounds);
}

QRectF VextilLearnedFaceDetector::faceBounds(const VextilBlazeFace::Face &face)
{
    const auto distance = [](QPointF a, QPointF b) { return std::hypot(a.x() - b.x(), a.y() - b.y()); };
    const QPointF eyes = (face.keyPoints[0] + face.keyPoints[1]) / 2;
    const QPointF mouth = face.keyPoints[3];
    const double side = 2.5 * (distance(eyes, mouth) + distance(face.keyPoints[0], face.keyPoints[1])) / 2;
    const QPointF centre = (eyes + mouth) / 2 - QPointF(0, 0.1 * side);
    return {centre - QPointF(side / 2, side / 2), QSizeF(side, side)};
}

QList<VextilFaceFeature> VextilLearnedFaceDetector::featuresInImage(const QImage &image)
{
    if (!networks())
        return {};
    if (!isStreamMode() || !m_scene.continues(image) || !m_tracked)
        return fullPass(image);
    if (m_tracked->boxIsNewer) {
        m_tracked->smile = smile(image, m_tracked->face);
        m_tracked->boxIsNewer = false;
        return {feature(*m_tracked, image)};
    }
    const QList<VextilBlazeFace::Face> found = m_networks->faces.detect(image);
    // The same single face, still overlapping itself: its smile is judged on the next frame.
    if (found.size() != 1 || !found[0].bounds.intersects(m_tracked->face.bounds))
        return fullPass(image);
    m_tracked->face = found[0];
    m_tracked->boxIsNewer = true;
    return {feature(*m_tracked, image)};
}

QList<VextilFaceFeature> VextilLearnedFaceDetector::fullPass(const QImage &image)
{
    QList<VextilFaceFeature> features;
    m_tracked.reset();
    const QList<VextilBlazeFace::Face> found = m_networks->faces.detect(image);
    // The expression network takes as long again: whoever waits for the faces hears first.
    QList<VextilFaceFeature> unjudged;
    for (const VextilBlazeFace::Face &face : found) {
        VextilFaceFeature early = feature({face, 0, false}, image);
        early.hasSmile = false;
        early.smileScore.reset();
        unjudged.append(early);
    }
    if (!unjudged.isEmpty())
        facesFound(unjudged);
    for (const VextilBlazeFace::Face &face : found) {
        const Tracked judged{face, smile(image, face), false};
        if (found.size() == 1)
            m_tracked = judged;
        features.append(feature(judged, image));
    }
    return features;
}

VextilFaceFeature VextilLearnedFaceDetector::feature(const Tracked &tracked, const QImage &image) const
{
    // The contract's bounds and points have their origin at the bottom left.
    const QRectF box = faceBounds(tracked.face);
    QList<QPointF> points;
    for (size_t k = 0; k < 4; ++k)
        points.append({tracked.face.keyPoints[k].x(), image.height() - tracked.face.keyPoints[k].y()});
    return {QRectF(box.x(), image.height() - box.bottom(), box.width(), box.height()), tracked.smile > m_smileThreshold,
            tracked.smile, points};
}
