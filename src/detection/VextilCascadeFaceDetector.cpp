#include "detection/VextilCascadeFaceDetector.h"

#include "detection/VextilImageMat.h"

#include <QFile>
#include <QLoggingCategory>

#include <opencv2/imgproc.hpp>
#include <opencv2/objdetect.hpp>

#include <algorithm>
#include <cmath>
#include <utility>

Q_LOGGING_CATEGORY(lcVextilDetector, "vextil.detector")

namespace {

// Regions of an upright face crop, as fractions of it: the mouth, and the centre whose
// brightness and colour describe this face's skin.
constexpr double kMouthX = 0.2, kMouthY = 0.62, kMouthW = 0.6, kMouthH = 0.33;
constexpr double kCentreX = 0.25, kCentreY = 0.3, kCentreW = 0.5, kCentreH = 0.5;
constexpr int kTeethMaxSaturation = 90;
// Skin in YCrCb, a range that holds across skin tones under ordinary light.
const cv::Scalar kSkinLow(0, 133, 77), kSkinHigh(255, 173, 127);

cv::Rect fractionOf(const cv::Size &size, double x, double y, double w, double h)
{
    return cv::Rect(int(x * size.width), int(y * size.height), int(w * size.width), int(h * size.height));
}

cv::Point2d applyAffine(const cv::Mat &m, cv::Point2d p)
{
    return {m.at<double>(0, 0) * p.x + m.at<double>(0, 1) * p.y + m.at<double>(0, 2),
            m.at<double>(1, 0) * p.x + m.at<double>(1, 1) * p.y + m.at<double>(1, 2)};
}

// A face hit, in full-resolution image pixels (origin top left), with its upright colour crop.
struct Candidate {
    cv::Point2d centre;
    cv::Size2d size;
    double angle = 0;
    int neighbors = 0;
    cv::Mat crop;  // BGR, upright, smileFaceWidth wide
    double skin = 0;
};

}  // namespace

struct VextilCascadeFaceDetector::Private {
    Settings settings;
    cv::CascadeClassifier faceCascade;
    cv::CascadeClassifier smileCascade;
    QString error;
    bool reportedFailure = false;
    // Buffers reused from frame to frame.
    cv::Mat greyFull, grey, equalised, rotated, region, scaled, uprightBgrx, cropGrey, cropConverted, skinMask;

    bool loadCascade(cv::CascadeClassifier &cascade, const QString &path);
    QList<Candidate> search(const cv::Mat &frame, int factor, double angle);
    cv::Mat uprightCrop(const cv::Mat &frame, const Candidate &face);
    double skinFraction(const cv::Mat &crop);
    int smileScore(const cv::Mat &crop);
    double teethFraction(const cv::Mat &crop);
};

bool VextilCascadeFaceDetector::Private::loadCascade(cv::CascadeClassifier &cascade, const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        error = QStringLiteral("cannot open detector model %1: %2").arg(path, file.errorString());
        return false;
    }
    const QByteArray xml = file.readAll();
    try {
        cv::FileStorage storage(xml.toStdString(), cv::FileStorage::READ | cv::FileStorage::MEMORY);
        if (storage.isOpened() && cascade.read(storage.getFirstTopLevelNode()))
            return true;
    } catch (const cv::Exception &) {
        // Fall through to the report below: a malformed model is as unusable as a missing one.
    }
    error = QStringLiteral("detector model %1 is not a readable cascade").arg(path);
    return false;
}

QList<Candidate> VextilCascadeFaceDetector::Private::search(const cv::Mat &frame, int factor, double angle)
{
    cv::Mat rotation;
    const cv::Mat *searched = &equalised;
    if (angle != 0) {
        rotation = cv::getRotationMatrix2D(cv::Point2f(equalised.cols / 2.0f, equalised.rows / 2.0f), angle, 1.0);
        cv::warpAffine(equalised, rotated, rotation, equalised.size(), cv::INTER_LINEAR, cv::BORDER_REPLICATE);
        searched = &rotated;
    }
    const int minFace = std::max(20, int(settings.minFaceFraction * equalised.cols));
    std::vector<cv::Rect> faces;
    std::vector<int> neighbors;
    faceCascade.detectMultiScale(*searched, faces, neighbors, settings.scaleFactor, settings.minNeighbors, 0,
                                 cv::Size(minFace, minFace));

    cv::Mat inverse;
    if (!rotation.empty())
        cv::invertAffineTransform(rotation, inverse);
    QList<Candidate> found;
    for (size_t i = 0; i < faces.size(); ++i) {
        cv::Point2d centre(faces[i].x + faces[i].width / 2.0, faces[i].y + faces[i].height / 2.0);
        if (!inverse.empty())
            centre = applyAffine(inverse, centre);
        Candidate face{centre * factor, cv::Size2d(faces[i].width * factor, faces[i].height * factor), angle,
                       neighbors[i], {}, 0};
        face.crop = uprightCrop(frame, face);
        face.skin = skinFraction(face.crop);
        if (face.skin >= settings.minSkinFraction)
            found.append(std::move(face));
    }
    return found;
}

cv::Mat VextilCascadeFaceDetector::Private::uprightCrop(const cv::Mat &frame, const Candidate &face)
{
    // Cut a margin around the face at full resolution, scale it so the face is smileFaceWidth
    // wide (area averaging keeps detail), then turn it upright around the face's centre.
    const double side = std::max(face.size.width, face.size.height) * 1.5;
    const cv::Rect bounds(0, 0, frame.cols, frame.rows);
    const cv::Rect around = cv::Rect(int(face.centre.x - side / 2), int(face.centre.y - side / 2), int(side),
                                     int(side)) & bounds;
    const double scale = settings.smileFaceWidth / face.size.width;
    cv::resize(frame(around), scaled, cv::Size(), scale, scale, cv::INTER_AREA);

    const cv::Size out(settings.smileFaceWidth, std::max(1, int(std::lround(face.size.height * scale))));
    const cv::Point2f centre(float((face.centre.x - around.x) * scale), float((face.centre.y - around.y) * scale));
    cv::Mat turn = cv::getRotationMatrix2D(centre, face.angle, 1.0);
    turn.at<double>(0, 2) += out.width / 2.0 - centre.x;
    turn.at<double>(1, 2) += out.height / 2.0 - centre.y;
    cv::warpAffine(scaled, uprightBgrx, turn, out, cv::INTER_LINEAR, cv::BORDER_REPLICATE);
    cv::Mat crop;
    cv::cvtColor(uprightBgrx, crop, cv::COLOR_BGRA2BGR);
    return crop;
}

double VextilCascadeFaceDetector::Private::skinFraction(const cv::Mat &crop)
{
    const cv::Rect centre = fractionOf(crop.size(), kCentreX, kCentreY, kCentreW, kCentreH);
    if (centre.area() == 0)
        return 0.0;
    cv::cvtColor(crop(centre), cropConverted, cv::COLOR_BGR2YCrCb);
    cv::inRange(cropConverted, kSkinLow, kSkinHigh, skinMask);
    return double(cv::countNonZero(skinMask)) / centre.area();
}

int VextilCascadeFaceDetector::Private::smileScore(const cv::Mat &crop)
{
    cv::cvtColor(crop, cropGrey, cv::COLOR_BGR2GRAY);
    cv::equalizeHist(cropGrey, cropGrey);
    const cv::Rect mouth = fractionOf(cropGrey.size(), kMouthX, kMouthY, kMouthW, kMouthH);
    const int width = cropGrey.cols;
    // Every raw hit is kept (no neighbour threshold) and clustered here, so that the size of
    // the largest cluster measures how strongly the mouth looks like a smile.
    std::vector<cv::Rect> hits;
    smileCascade.detectMultiScale(cropGrey(mouth), hits, 1.05, 0, 0, cv::Size(width / 4, std::max(1, width / 12)));
    std::vector<int> weights;
    cv::groupRectangles(hits, weights, 1, 0.2);
    return weights.empty() ? 0 : *std::max_element(weights.begin(), weights.end());
}

double VextilCascadeFaceDetector::Private::teethFraction(const cv::Mat &crop)
{
    cv::cvtColor(crop, cropConverted, cv::COLOR_BGR2HSV);
    // "Bright" is relative to this face: above the upper quartile of its central brightness.
    const cv::Mat centre = cropConverted(fractionOf(cropConverted.size(), kCentreX, kCentreY, kCentreW, kCentreH));
    std::vector<uchar> values;
    values.reserve(centre.total());
    for (int y = 0; y < centre.rows; ++y)
        for (int x = 0; x < centre.cols; ++x)
            values.push_back(centre.at<cv::Vec3b>(y, x)[2]);
    if (values.empty())
        return 0.0;
    auto quartile = values.begin() + values.size() * 3 / 4;
    std::nth_element(values.begin(), quartile, values.end());
    const uchar bright = *quartile;

    const cv::Rect mouthRect = fractionOf(cropConverted.size(), kMouthX, kMouthY, kMouthW, kMouthH);
    const cv::Mat mouth = cropConverted(mouthRect);
    int teeth = 0;
    for (int y = 0; y < mouth.rows; ++y)
        for (int x = 0; x < mouth.cols; ++x) {
            const cv::Vec3b &p = mouth.at<cv::Vec3b>(y, x);
            teeth += p[1] < kTeethMaxSaturation && p[2] > bright;
        }
    return mouthRect.area() > 0 ? double(teeth) / mouthRect.area() : 0.0;
}

VextilCascadeFaceDetector::VextilCascadeFaceDetector() : VextilCascadeFaceDetector(Settings{}) {}

VextilCascadeFaceDetector::VextilCascadeFaceDetector(const Settings &settings)
    : VextilCascadeFaceDetector(builtInFaceCascade(), builtInSmileCascade(), settings)
{
}

VextilCascadeFaceDetector::VextilCascadeFaceDetector(const QString &faceCascadePath,
                                                     const QString &smileCascadePath)
    : VextilCascadeFaceDetector(faceCascadePath, smileCascadePath, Settings{})
{
}

VextilCascadeFaceDetector::VextilCascadeFaceDetector(const QString &faceCascadePath,
                                                     const QString &smileCascadePath, const Settings &settings)
    : d(std::make_unique<Private>())
{
    d->settings = settings;
    if (d->loadCascade(d->faceCascade, faceCascadePath))
        d->loadCascade(d->smileCascade, smileCascadePath);
    if (!d->error.isEmpty())
        qCWarning(lcVextilDetector).noquote() << "face detection is off:" << d->error;
}

VextilCascadeFaceDetector::~VextilCascadeFaceDetector() = default;

bool VextilCascadeFaceDetector::isLoaded() const { return d->error.isEmpty(); }
QString VextilCascadeFaceDetector::errorString() const { return d->error; }
const VextilCascadeFaceDetector::Settings &VextilCascadeFaceDetector::settings() const { return d->settings; }

QString VextilCascadeFaceDetector::builtInFaceCascade()
{
    return QStringLiteral(":/VextilToolkit/detector/haarcascade_frontalface_alt2.xml");
}

QString VextilCascadeFaceDetector::builtInSmileCascade()
{
    return QStringLiteral(":/VextilToolkit/detector/haarcascade_smile.xml");
}

bool VextilCascadeFaceDetector::isSmile(const FaceAnalysis &face, const Settings &settings)
{
    return face.smileScore >= settings.smileMinScore && face.teethFraction >= settings.smileMinTeeth;
}

QList<VextilFaceFeature> VextilCascadeFaceDetector::featuresInImage(const QImage &image)
{
    QList<VextilFaceFeature> features;
    for (const FaceAnalysis &face : analyse(image))
        features.append({face.bounds, isSmile(face, d->settings)});
    return features;
}

QList<VextilCascadeFaceDetector::FaceAnalysis> VextilCascadeFaceDetector::analyse(const QImage &image)
{
    if (!isLoaded() || image.isNull())
        return {};
    const VextilImageMat pixels(image);
    QList<FaceAnalysis> result;
    try {
        const cv::Mat &frame = pixels.bgrx();
        // A whole reduction factor keeps area averaging on its fast path.
        const int factor = std::max(1, int(std::lround(double(frame.cols) / d->settings.workingWidth)));
        cv::cvtColor(frame, d->greyFull, cv::COLOR_BGRA2GRAY);
        cv::resize(d->greyFull, d->grey, cv::Size(), 1.0 / factor, 1.0 / factor, cv::INTER_AREA);
        cv::equalizeHist(d->grey, d->equalised);

        const auto strongest = [](const QList<Candidate> &faces) {
            int best = 0;
            for (const Candidate &face : faces)
                best = std::max(best, face.neighbors);
            return best;
        };
        QList<Candidate> faces = d->search(frame, factor, 0);
        for (double angle : d->settings.tiltAngles) {
            if (strongest(faces) >= d->settings.confidentNeighbors)
                break;
            QList<Candidate> tilted = d->search(frame, factor, angle);
            if (strongest(tilted) > strongest(faces))
                faces = std::move(tilted);
        }
        for (const Candidate &face : faces) {
            FaceAnalysis analysis;
            const double top = face.centre.y - face.size.height / 2;
            analysis.bounds = QRectF(face.centre.x - face.size.width / 2, frame.rows - (top + face.size.height),
                                     face.size.width, face.size.height);
            analysis.neighbors = face.neighbors;
            analysis.angle = face.angle;
            analysis.skinFraction = face.skin;
            analysis.smileScore = d->smileScore(face.crop);
            analysis.teethFraction = d->teethFraction(face.crop);
            result.append(analysis);
        }
    } catch (const cv::Exception &e) {
        // Never let a detector failure take down the capture thread: report no face, and say
        // so once rather than on every frame.
        if (!std::exchange(d->reportedFailure, true))
            qCWarning(lcVextilDetector) << "face detection failed:" << e.what();
        return {};
    }
    std::stable_sort(result.begin(), result.end(), [](const FaceAnalysis &a, const FaceAnalysis &b) {
        return a.bounds.width() * a.bounds.height() > b.bounds.width() * b.bounds.height();
    });
    return result;
}
