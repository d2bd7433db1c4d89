#include "detection/VextilFaceExpressionNet.h"

#include "detection/VextilDepthwiseConvolution.h"
#include "detection/VextilFrameScaler.h"
#include "detection/VextilImageMat.h"

#include <QFile>
#include <QHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <opencv2/dnn.hpp>
#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <cmath>

namespace {

constexpr int kInput = 112;

// Tensors of the weights file by name, dequantised, in their stored (channels-last) layout.
using Tensors = QHash<QString, cv::Mat>;

bool readTensors(const QString &manifestPath, const QString &weightsPath, Tensors &tensors, QString &error)
{
    QFile manifest(manifestPath), weights(weightsPath);
    if (!manifest.open(QIODevice::ReadOnly) || !weights.open(QIODevice::ReadOnly)) {
        error = QStringLiteral("cannot open the expression model %1").arg(manifest.isOpen() ? weightsPath : manifestPath);
        return false;
    }
    const QByteArray bytes = weights.readAll();
    qsizetype at = 0;
    for (const QJsonValue &group : QJsonDocument::fromJson(manifest.readAll()).array()) {
        for (const QJsonValue &entry : group.toObject().value(QStringLiteral("weights")).toArray()) {
            const QJsonObject w = entry.toObject();
            int count = 1;
            for (const QJsonValue &dim : w.value(QStringLiteral("shape")).toArray())
                count *= dim.toInt();
            const QJsonObject q = w.value(QStringLiteral("quantization")).toObject();
            const bool quantised = q.value(QStringLiteral("dtype")).toString() == QLatin1String("uint8");
            const qsizetype size = quantised ? count : count * qsizetype(sizeof(float));
            if (at + size > bytes.size()) {
                error = QStringLiteral("the expression model's weights are shorter than its manifest");
                return false;
            }
            cv::Mat values(1, count, CV_32F);
            for (int i = 0; i < count; ++i) {
                values.at<float>(i) = quantised
                    ? float(q.value(QStringLiteral("min")).toDouble() + q.value(QStringLiteral("scale")).toDouble() * quint8(bytes[at + i]))
                    : reinterpret_cast<const float *>(bytes.constData() + at)[i];
            }
            tensors.insert(w.value(QStringLiteral("name")).toString(), values);
            at += size;
        }
    }
    return true;
}

// Builds the network layer by layer; every convolution pads as TensorFlow's "same" does.
class Builder {
public:
    Builder(cv::dnn::Net &net, const Tensors &tensors) : m_net(net), m_tensors(tensors) {}

    // A 3x3 convolution over all input channels; filters stored [3][3][in][out].
    int conv(int input, const QString &prefix, int in, int out, int stride)
    {
        const cv::Mat &tf = m_tensors[prefix + QStringLiteral("/filters")];
        cv::Mat w = filters(out, in, 3);
        for (int o = 0; o < out; ++o)
            for (int i = 0; i < in; ++i)
                for (int k = 0; k < 9; ++k)
                    w.ptr<float>()[((o * in + i) * 9) + k] = tf.at<float>((k * in + i) * out + o);
        return layer(input, convParams(name(prefix + QStringLiteral("/conv")), out, 3, stride, w, bias(prefix)));
    }

    // Depthwise 3x3 (no bias), then pointwise 1x1 with the bias: a separable convolution. Of
    // several inputs, it convolves the ReLU of their sum.
    int separable(const QList<int> &inputs, const QString &prefix, int in, int out, int stride)
    {
        const cv::Mat &dw = m_tensors[prefix + QStringLiteral("/depthwise_filter")];
        cv::Mat depth = filters(in, 1, 3);
        for (int c = 0; c < in; ++c)
            for (int k = 0; k < 9; ++k)
                depth.ptr<float>()[c * 9 + k] = dw.at<float>(k * in + c);
        const std::string dwName = name(prefix + QStringLiteral("/dw"));
        const int depthwise = layer(inputs, VextilDepthwiseConvolution::params(dwName, depth, cv::Mat(), stride, inputs.size() > 1));
        const cv::Mat &pw = m_tensors[prefix + QStringLiteral("/pointwise_filter")];
        cv::Mat point = filters(out, in, 1);
        for (int o = 0; o < out; ++o)
            for (int i = 0; i < in; ++i)
                point.ptr<float>()[o * in + i] = pw.at<float>(i * out + o);
        return layer(depthwise, convParams(name(prefix + QStringLiteral("/pw")), out, 1, 1, point, bias(prefix)));
    }

    int sum(const QList<int> &inputs)
    {
        cv::dnn::LayerParams lp = params(QStringLiteral("sum"), "Eltwise");
        lp.set("operation", "sum");
        return layer(inputs, lp);
    }

    int relu(int input) { return layer(input, params(QStringLiteral("relu"), "ReLU")); }

    // out1 = relu(conv0); each later convolution reads the ReLU of the sum of the block's
    // earlier outputs, and so does the next block.
    QList<int> denseBlock(const QList<int> &inputs, const QString &prefix, int in, int out, bool first)
    {
        const int out1 = relu(first ? conv(inputs.first(), prefix + QStringLiteral("/conv0"), in, out, 2)
                                    : separable(inputs, prefix + QStringLiteral("/conv0"), in, out, 2));
        const int out2 = separable({out1}, prefix + QStringLiteral("/conv1"), out, out, 1);
        const int out3 = separable({out1, out2}, prefix + QStringLiteral("/conv2"), out, out, 1);
        const int out4 = separable({out1, out2, out3}, prefix + QStringLiteral("/conv3"), out, out, 1);
        return {out1, out2, out3, out4};
    }

    int averagePool(int input)
    {
        cv::dnn::LayerParams lp = params(QStringLiteral("pool"), "Pooling");
        lp.set("pool", "ave");
        lp.set("kernel_size", 7);
        lp.set("stride", 2);
        return layer(input, lp);
    }

    // 256 -> 7; weights stored [in][out].
    int fullyConnected(int input)
    {
        const cv::Mat &tf = m_tensors[QStringLiteral("fc/weights")];
        cv::Mat w(7, 256, CV_32F);
        for (int o = 0; o < 7; ++o)
            for (int i = 0; i < 256; ++i)
                w.at<float>(o, i) = tf.at<float>(i * 7 + o);
        cv::dnn::LayerParams lp = params(QStringLiteral("fc"), "InnerProduct");
        lp.set("num_output", 7);
        lp.set("bias_term", true);
        lp.blobs = {w, m_tensors[QStringLiteral("fc/bias")].clone()};
        return layer(input, lp);
    }

private:
    static cv::Mat filters(int out, int in, int k)
    {
        const int shape[] = {out, in, k, k};
        return cv::Mat(4, shape, CV_32F);
    }
    cv::Mat bias(const QString &prefix) const { return m_tensors[prefix + QStringLiteral("/bias")].clone(); }
    std::string name(const QString &base) { return (base + QString::number(++m_count)).toStdString(); }

    cv::dnn::LayerParams params(const QString &base, const char *type)
    {
        cv::dnn::LayerParams lp;
        lp.name = name(base);
        lp.type = type;
        return lp;
    }

    cv::dnn::LayerParams convParams(const std::string &layerName, int out, int kernel, int stride, const cv::Mat &w, const cv::Mat &b)
    {
        cv::dnn::LayerParams lp;
        lp.name = layerName;
        lp.type = "Convolution";
        lp.set("num_output", out);
        lp.set("kernel_size", kernel);
        lp.set("stride", stride);
        lp.set("pad_mode", "SAME");
        lp.set("bias_term", !b.empty());
        lp.blobs = b.empty() ? std::vector<cv::Mat>{w} : std::vector<cv::Mat>{w, b};
        return lp;
    }

    int layer(int input, cv::dnn::LayerParams lp) { return layer(QList<int>{input}, std::move(lp)); }

    int layer(const QList<int> &inputs, cv::dnn::LayerParams lp)
    {
        const int id = m_net.addLayer(lp.name, lp.type, lp);
        for (int i = 0; i < inputs.size(); ++i)
            m_net.connect(inputs[i], 0, id, i);
        return id;
    }

    cv::dnn::Net &m_net;
    const Tensors &m_tensors;
    int m_count = 0;
};

}  // namespace

struct VextilFaceExpressionNet::Private {
    cv::dnn::Net net;
    QString error;
    VextilFrameScaler scaler{cv::INTER_LINEAR};
    cv::Mat scaled, crop, blob;
};

VextilFaceExpressionNet::VextilFaceExpressionNet()
    : VextilFaceExpressionNet(QStringLiteral(":/VextilToolkit/models/face-expression/face_expression_model-weights_manifest.json"),
                              QStringLiteral(":/VextilToolkit/models/face-expression/face_expression_model.bin"))
{
}

VextilFaceExpressionNet::VextilFaceExpressionNet(const QString &manifestPath, const QString &weightsPath)
    : d(std::make_unique<Private>())
{
    Tensors tensors;
    if (!readTensors(manifestPath, weightsPath, tensors, d->error))
        return;
    try {
        VextilDepthwiseConvolution::registerType();
        Builder build(d->net, tensors);
        QList<int> x{0};  // the network's input
        const int widths[] = {32, 64, 128, 256};
        int in = 3;
        for (int block = 0; block < 4; ++block) {
            x = build.denseBlock(x, QStringLiteral("dense%1").arg(block), in, widths[block], block == 0);
            in = widths[block];
        }
        build.fullyConnected(build.averagePool(build.relu(build.sum(x))));
        d->net.setInputsNames({"image"});
    } catch (const cv::Exception &e) {
        d->error = QStringLiteral("the expression model cannot be built: %1").arg(QString::fromUtf8(e.what()));
        d->net = cv::dnn::Net();
    }
}

VextilFaceExpressionNet::~VextilFaceExpressionNet() = default;

bool VextilFaceExpressionNet::isLoaded() const { return d->error.isEmpty(); }
QString VextilFaceExpressionNet::errorString() const { return d->error; }

VextilFaceExpressionNet::Probabilities VextilFaceExpressionNet::classify(const QImage &image, const QRectF &face)
{
    Probabilities result{};
    const QRect box = face.toRect().intersected(image.rect());
    if (!isLoaded() || image.isNull() || box.width() < 2 || box.height() < 2)
        return result;
    const VextilImageMat pixels(image);
    const cv::Mat &bgrx = pixels.bgrx();
    // The crop, scaled, goes in the middle of a black input square. Scaling before converting
    // only touches the pixels the network sees.
    const double scale = double(kInput) / std::max(box.width(), box.height());
    const cv::Size fitted(std::clamp(int(std::lround(box.width() * scale)), 1, kInput),
                          std::clamp(int(std::lround(box.height() * scale)), 1, kInput));
    d->scaler.scale(bgrx(cv::Rect(box.x(), box.y(), box.width(), box.height())), fitted, d->scaled);
    d->crop.create(kInput, kInput, CV_8UC3);
    d->crop.setTo(cv::Scalar::all(0));
    cv::cvtColor(d->scaled, d->crop(cv::Rect((kInput - fitted.width) / 2, (kInput - fitted.height) / 2, fitted.width, fitted.height)),
                 cv::COLOR_BGRA2RGB);
    d->blob = cv::dnn::blobFromImage(d->crop, 1.0 / 255, cv::Size(), cv::Scalar(122.782, 117.001, 104.298), false, false);
    d->net.setInput(d->blob);
    const cv::Mat logits = d->net.forward();
    float peak = logits.ptr<float>()[0];
    for (int i = 1; i < 7; ++i)
        peak = std::max(peak, logits.ptr<float>()[i]);
    float total = 0;
    for (int i = 0; i < 7; ++i)
        total += result[size_t(i)] = std::exp(logits.ptr<float>()[i] - peak);
    for (float &p : result)
        p /= total;
    return result;
}
