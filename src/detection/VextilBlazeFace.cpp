#include "detection/VextilBlazeFace.h"

#include "detection/VextilDepthwiseConvolution.h"
#include "detection/VextilFrameScaler.h"
#include "detection/VextilImageMat.h"

#include <QFile>

#include <opencv2/dnn.hpp>
#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <cmath>

namespace {

constexpr int kInput = 128;
constexpr float kMergeIou = 0.3f;

// One anchor's decoding in input-square coordinates (0 to 1): centre, size, key points.
struct Candidate {
    float score;
    std::array<float, 16> geometry;  // cx, cy, w, h, then six (x, y) key points

    float iou(const Candidate &other) const
    {
        const auto edge = [](const Candidate &c, int axis, float sign) { return c.geometry[axis] + sign * c.geometry[axis + 2] / 2; };
        const float w = std::min(edge(*this, 0, 1), edge(other, 0, 1)) - std::max(edge(*this, 0, -1), edge(other, 0, -1));
        const float h = std::min(edge(*this, 1, 1), edge(other, 1, 1)) - std::max(edge(*this, 1, -1), edge(other, 1, -1));
        const float shared = std::max(0.f, w) * std::max(0.f, h);
        const float all = geometry[2] * geometry[3] + other.geometry[2] * other.geometry[3] - shared;
        return all > 0 ? shared / all : 0.f;
    }
};

// Decodes one anchor grid: cells x cells cells, `perCell` anchors each.
void decodeGrid(const cv::Mat &scores, const cv::Mat &boxes, int cells, int perCell, float minimumLogit,
                std::vector<Candidate> &out)
{
    const float *score = scores.ptr<float>();
    const float *box = boxes.ptr<float>();
    for (int i = 0; i < cells * cells * perCell; ++i) {
        if (score[i] < minimumLogit)
            continue;
        const int cell = i / perCell;
        const float ax = (float(cell % cells) + 0.5f) / float(cells);
        const float ay = (float(cell / cells) + 0.5f) / float(cells);
        Candidate c{1.f / (1.f + std::exp(-score[i])), {}};
        const float *b = box + i * 16;
        c.geometry[0] = ax + b[0] / kInput;
        c.geometry[1] = ay + b[1] / kInput;
        c.geometry[2] = b[2] / kInput;
        c.geometry[3] = b[3] / kInput;
        for (int k = 0; k < 6; ++k) {
            c.geometry[4 + 2 * k] = ax + b[4 + 2 * k] / kInput;
            c.geometry[5 + 2 * k] = ay + b[5 + 2 * k] / kInput;
        }
        out.push_back(c);
    }
}

// Merges overlapping candidates into their score-weighted mean, strongest first.
std::vector<Candidate> merge(std::vector<Candidate> candidates)
{
    std::sort(candidates.begin(), candidates.end(), [](const Candidate &a, const Candidate &b) { return a.score > b.score; });
    std::vector<Candidate> merged;
    std::vector<bool> used(candidates.size(), false);
    for (size_t i = 0; i < candidates.size(); ++i) {
        if (used[i])
            continue;
        Candidate sum{candidates[i].score, {}};
        float weight = 0;
        for (size_t j = i; j < candidates.size(); ++j) {
            if (used[j] || (j != i && candidates[i].iou(candidates[j]) < kMergeIou))
                continue;
            used[j] = true;
            for (size_t g = 0; g < 16; ++g)
                sum.geometry[g] += candidates[j].geometry[g] * candidates[j].score;
            weight += candidates[j].score;
        }
        for (float &g : sum.geometry)
            g /= weight;
        merged.push_back(sum);
    }
    return merged;
}

}  // namespace

struct VextilBlazeFace::Private {
    cv::dnn::Net net;
    QString error;
    std::vector<std::string> outputs{"Identity:0", "Identity_1:0", "Identity_2:0", "Identity_3:0"};
    cv::Mat square = cv::Mat(kInput, kInput, CV_8UC3);  // reused for every frame
    VextilFrameScaler scaler{cv::INTER_AREA};
    cv::Mat scaled, input;
};

VextilBlazeFace::VextilBlazeFace() : VextilBlazeFace(builtInModel()) {}

VextilBlazeFace::VextilBlazeFace(const QString &modelPath) : d(std::make_unique<Private>())
{
    QFile file(modelPath);
    if (!file.open(QIODevice::ReadOnly)) {
        d->error = QStringLiteral("cannot open face model %1: %2").arg(modelPath, file.errorString());
        return;
    }
    const QByteArray model = file.readAll();
    try {
        // The first pass creates the layers, so that the depthwise ones are our faster kind.
        VextilDepthwiseConvolution::replacingOpenCvDepthwise([&] {
            d->net = cv::dnn::readNetFromONNX(model.constData(), size_t(model.size()));
            const int shape[] = {1, kInput, kInput, 3};
            d->net.setInput(cv::Mat(4, shape, CV_32F, cv::Scalar(0)));
            std::vector<cv::Mat> out;
            d->net.forward(out, d->outputs);
        });
    } catch (const cv::Exception &) {
        d->net = cv::dnn::Net();
    }
    if (d->net.empty())
        d->error = QStringLiteral("face model %1 is not a readable network").arg(modelPath);
}

VextilBlazeFace::~VextilBlazeFace() = default;

bool VextilBlazeFace::isLoaded() const { return d->error.isEmpty(); }
QString VextilBlazeFace::errorString() const { return d->error; }
QString VextilBlazeFace::builtInModel() { return QStringLiteral(":/VextilToolkit/models/blazeface/face_detection_front_128x128_barracuda.onnx"); }

QList<VextilBlazeFace::Face> VextilBlazeFace::detect(const QImage &image, float minimumScore)
{
    if (!isLoaded() || image.isNull())
        return {};
    const VextilImageMat pixels(image);
    const cv::Mat &bgrx = pixels.bgrx();
    // The whole image, aspect kept, in the middle of the square; the rest stays black.
    const double scale = double(kInput) / std::max(bgrx.cols, bgrx.rows);
    const cv::Size fitted(std::max(1, int(std::lround(bgrx.cols * scale))), std::max(1, int(std::lround(bgrx.rows * scale))));
    const cv::Point offset((kInput - fitted.width) / 2, (kInput - fitted.height) / 2);
    d->scaler.scale(bgrx, fitted, d->scaled);
    d->square.setTo(cv::Scalar::all(0));
    cv::cvtColor(d->scaled, d->square(cv::Rect(offset, fitted)), cv::COLOR_BGRA2RGB);
    d->square.convertTo(d->input, CV_32F, 1.0 / 127.5, -1.0);
    const int shape[] = {1, kInput, kInput, 3};  // channels last
    const cv::Mat blob(4, shape, CV_32F, d->input.data);

    std::vector<cv::Mat> out;
    d->net.setInput(blob);
    d->net.forward(out, d->outputs);
    std::vector<Candidate> candidates;
    const float minimumLogit = std::log(minimumScore / (1.f - minimumScore));
    decodeGrid(out[0], out[2], 16, 2, minimumLogit, candidates);
    decodeGrid(out[1], out[3], 8, 6, minimumLogit, candidates);

    QList<Face> faces;
    const auto toImage = [&](float x, float y) {
        return QPointF((x * kInput - offset.x) / scale, (y * kInput - offset.y) / scale);
    };
    for (const Candidate &c : merge(std::move(candidates))) {
        Face face;
        face.score = c.score;
        const QPointF centre = toImage(c.geometry[0], c.geometry[1]);
        const QSizeF size(c.geometry[2] * kInput / scale, c.geometry[3] * kInput / scale);
        face.bounds = QRectF(centre - QPointF(size.width() / 2, size.height() / 2), size);
        for (int k = 0; k < 6; ++k)
            face.keyPoints[size_t(k)] = toImage(c.geometry[4 + 2 * k], c.geometry[5 + 2 * k]);
        faces.append(face);
    }
    std::stable_sort(faces.begin(), faces.end(), [](const Face &a, const Face &b) {
        return a.bounds.width() * a.bounds.height() > b.bounds.width() * b.bounds.height();
    });
    return faces;
}
