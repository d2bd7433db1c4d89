#include "detection/VextilGraphModel.h"

#include "detection/VextilDepthwiseConvolution.h"

#include <QFile>
#include <QHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <stdexcept>

namespace {

// A stored tensor: its shape and its values as floats, in stored (channels-last) order.
struct Tensor {
    QList<int> shape;
    cv::Mat values;  // 1 x count, CV_32F
};
using Tensors = QHash<QString, Tensor>;

[[noreturn]] void fail(const QString &why) { throw std::runtime_error(why.toStdString()); }

QString string(const QJsonObject &o, const char *key) { return o.value(QLatin1String(key)).toString(); }

Tensor readTensor(const QJsonObject &w, const QByteArray &bytes, qsizetype &at)
{
    Tensor t;
    int count = 1;
    for (const QJsonValue &dim : w.value(QStringLiteral("shape")).toArray()) {
        t.shape.append(dim.toInt());
        count *= std::max(dim.toInt(), 0);
    }
    const QJsonObject q = w.value(QStringLiteral("quantization")).toObject();
    const QString type = q.isEmpty() ? string(w, "dtype") : string(q, "dtype");
    if (type != QLatin1String("float32") && type != QLatin1String("int32") && type != QLatin1String("uint8"))
        fail(QStringLiteral("weights of type %1 are not supported").arg(type));
    const bool quantised = type == QLatin1String("uint8");
    const qsizetype size = quantised ? count : count * qsizetype(sizeof(float));
    if (at + size > bytes.size())
        fail(QStringLiteral("the weights file is shorter than its manifest"));
    t.values.create(1, std::max(count, 1), CV_32F);
    const char *data = bytes.constData() + at;
    const bool integers = type == QLatin1String("int32");
    const double minimum = q.value(QStringLiteral("min")).toDouble(), scale = q.value(QStringLiteral("scale")).toDouble();
    float *values = t.values.ptr<float>();
    for (int i = 0; i < count; ++i)
        values[i] = quantised ? float(minimum + scale * quint8(data[i]))
                    : integers ? float(reinterpret_cast<const qint32 *>(data)[i])
                               : reinterpret_cast<const float *>(data)[i];
    at += size;
    return t;
}

Tensors readTensors(const QJsonArray &manifest, const QByteArray &bytes)
{
    Tensors tensors;
    qsizetype at = 0;
    for (const QJsonValue &group : manifest)
        for (const QJsonValue &entry : group.toObject().value(QStringLiteral("weights")).toArray())
            tensors.insert(string(entry.toObject(), "name"), readTensor(entry.toObject(), bytes, at));
    return tensors;
}

// Translates the graph's nodes, in their stored order, into layers of `net`.
class Translator {
public:
    Translator(cv::dnn::Net &net, Tensors tensors) : m_net(net), m_tensors(std::move(tensors)) {}

    void node(const QJsonObject &n)
    {
        const QString op = string(n, "op");
        const QString name = string(n, "name");
        m_attr = n.value(QStringLiteral("attr")).toObject();
        m_inputs.clear();
        for (const QJsonValue &in : n.value(QStringLiteral("input")).toArray())
            m_inputs.append(in.toString().section(QLatin1Char(':'), 0, 0));
        if (op == QLatin1String("Const"))
            return;
        if (op == QLatin1String("Placeholder"))
            return input(name);
        if (op == QLatin1String("Identity"))
            return alias(name);
        if (op == QLatin1String("_FusedConv2D") || op == QLatin1String("Conv2D"))
            return convolution(name, false);
        if (op == QLatin1String("DepthwiseConv2dNative"))
            return convolution(name, true);
        if (op == QLatin1String("MaxPool"))
            return maxPool(name);
        if (op == QLatin1String("AddV2") || op == QLatin1String("Add"))
            return sum(name);
        if (op == QLatin1String("Relu"))
            return add(name, params(name, "ReLU"), {source(0)});
        if (op == QLatin1String("Mean"))
            return spatialMean(name);
        if (op == QLatin1String("Softmax"))
            return add(name, params(name, "Softmax"), {source(0)});
        fail(QStringLiteral("operation %1 (%2) is not supported").arg(op, name));
    }

    bool hasInput() const { return m_hasInput; }

private:
    cv::dnn::LayerParams params(const QString &name, const char *type) const
    {
        cv::dnn::LayerParams lp;
        lp.name = name.toStdString();
        lp.type = type;
        return lp;
    }

    int source(int i) const
    {
        if (i >= m_inputs.size() || !m_layers.contains(m_inputs[i]))
            fail(QStringLiteral("a node reads %1, which is no layer").arg(m_inputs.value(i)));
        return m_layers[m_inputs[i]];
    }

    const Tensor &constant(int i) const
    {
        const auto it = m_tensors.constFind(m_inputs.value(i));
        if (it == m_tensors.constEnd())
            fail(QStringLiteral("a node reads %1, which is no weight").arg(m_inputs.value(i)));
        return *it;
    }

    QList<int> ints(const char *key) const
    {
        QList<int> values;
        for (const QJsonValue &v : m_attr.value(QLatin1String(key)).toObject().value(QStringLiteral("list")).toObject().value(QStringLiteral("i")).toArray())
            values.append(v.toVariant().toInt());
        return values;
    }

    QStringList strings(const char *key) const
    {
        QStringList values;
        for (const QJsonValue &v : m_attr.value(QLatin1String(key)).toObject().value(QStringLiteral("list")).toObject().value(QStringLiteral("s")).toArray())
            values.append(QString::fromLatin1(QByteArray::fromBase64(v.toString().toLatin1())));
        return values;
    }

    QString text(const char *key) const
    {
        return QString::fromLatin1(QByteArray::fromBase64(m_attr.value(QLatin1String(key)).toObject().value(QStringLiteral("s")).toString().toLatin1()));
    }

    // Stride and padding of a convolution or pooling node, which must be channels-last.
    void geometry(cv::dnn::LayerParams &lp) const
    {
        const QList<int> strides = ints("strides");
        const QString format = text("data_format");
        if (strides.size() != 4 || (!format.isEmpty() && format != QLatin1String("NHWC")))
            fail(QStringLiteral("%1 is not a channels-last 2-D operation").arg(QString::fromStdString(lp.name)));
        const QString padding = text("padding");
        if (padding != QLatin1String("SAME") && padding != QLatin1String("VALID"))
            fail(QStringLiteral("padding %1 is not supported").arg(padding));
        lp.set("stride_h", strides[1]);
        lp.set("stride_w", strides[2]);
        lp.set("pad_mode", padding.toStdString());
    }

    void input(const QString &name)
    {
        if (m_hasInput)
            fail(QStringLiteral("models with several inputs are not supported"));
        m_hasInput = true;
        m_layers.insert(name, 0);
        m_net.setInputsNames({name.toStdString()});
    }

    void alias(const QString &name) { m_layers.insert(name, source(0)); }

    // Filters are stored [height][width][in][out] (depthwise: [height][width][channels][1]);
    // OpenCV wants [out][in / groups][height][width].
    static cv::Mat openCvFilters(const Tensor &f, bool depthwise)
    {
        const int kh = f.shape[0], kw = f.shape[1], in = f.shape[2], out = depthwise ? in : f.shape[3];
        const int perGroup = depthwise ? 1 : in;
        const int shape[] = {out, perGroup, kh, kw};
        cv::Mat w(4, shape, CV_32F);
        float *target = w.ptr<float>();
        for (int o = 0; o < out; ++o)
            for (int i = 0; i < perGroup; ++i)
                for (int tap = 0; tap < kh * kw; ++tap)
                    *target++ = f.values.at<float>(depthwise ? tap * in + o : (tap * in + i) * out + o);
        return w;
    }

    void convolution(const QString &name, bool depthwise)
    {
        const Tensor &f = constant(1);
        if (f.shape.size() != 4 || (depthwise && f.shape[3] != 1))
            fail(QStringLiteral("%1 has filters of an unsupported shape").arg(name));
        const cv::Mat w = openCvFilters(f, depthwise);
        const int out = w.size[0];
        // Our own layer is faster on the small planes of such networks.
        const int stride = ints("strides").value(1);
        if (depthwise && w.size[2] == 3 && w.size[3] == 3 && text("padding") == QLatin1String("SAME")
            && (stride == 1 || stride == 2) && ints("strides").value(2) == stride)
            return add(name, VextilDepthwiseConvolution::params(name.toStdString(), w, cv::Mat(), stride, false), {source(0)});
        cv::dnn::LayerParams lp = params(name, "Convolution");
        geometry(lp);
        lp.set("kernel_h", w.size[2]);
        lp.set("kernel_w", w.size[3]);
        lp.set("num_output", out);
        lp.set("group", depthwise ? out : 1);
        const QStringList fused = strings("fused_ops");
        for (const QString &op : fused)
            if (op != QLatin1String("BiasAdd") && op != QLatin1String("Relu"))
                fail(QStringLiteral("fused operation %1 is not supported").arg(op));
        lp.blobs = {w};
        const bool biased = fused.contains(QStringLiteral("BiasAdd"));
        if (biased && int(constant(2).values.total()) != out)
            fail(QStringLiteral("%1 has %2 biases for %3 outputs").arg(name).arg(constant(2).values.total()).arg(out));
        if (biased)
            lp.blobs.push_back(constant(2).values.clone());
        lp.set("bias_term", biased);
        add(name, lp, {source(0)});
        if (fused.contains(QStringLiteral("Relu")))
            add(name, params(name + QStringLiteral("/relu"), "ReLU"), {m_layers[name]});
    }

    void maxPool(const QString &name)
    {
        const QList<int> size = ints("ksize");
        if (size.size() != 4)
            fail(QStringLiteral("%1 has no pooling window").arg(name));
        cv::dnn::LayerParams lp = params(name, "Pooling");
        geometry(lp);
        lp.set("pool", "max");
        lp.set("kernel_h", size[1]);
        lp.set("kernel_w", size[2]);
        add(name, lp, {source(0)});
    }

    void sum(const QString &name)
    {
        cv::dnn::LayerParams lp = params(name, "Eltwise");
        lp.set("operation", "sum");
        add(name, lp, {source(0), source(1)});
    }

    // A mean over height and width (axes 1 and 2 of channels-last) is a global average pool.
    void spatialMean(const QString &name)
    {
        const cv::Mat &axes = constant(1).values;
        if (axes.total() != 2 || axes.at<float>(0) != 1 || axes.at<float>(1) != 2)
            fail(QStringLiteral("%1 is a mean over other axes than height and width").arg(name));
        cv::dnn::LayerParams lp = params(name, "Pooling");
        lp.set("pool", "ave");
        lp.set("global_pooling", true);
        add(name, lp, {source(0)});
        cv::dnn::LayerParams flat = params(name + QStringLiteral("/flat"), "Flatten");
        add(name, flat, {m_layers[name]});
    }

    void add(const QString &name, cv::dnn::LayerParams lp, const QList<int> &inputs)
    {
        const int id = m_net.addLayer(lp.name, lp.type, lp);
        for (int i = 0; i < inputs.size(); ++i)
            m_net.connect(inputs[i], 0, id, i);
        m_layers.insert(name, id);
    }

    cv::dnn::Net &m_net;
    const Tensors m_tensors;
    QHash<QString, int> m_layers;  // node name -> layer id
    QStringList m_inputs;
    QJsonObject m_attr;
    bool m_hasInput = false;
};

}  // namespace

VextilGraphModel::VextilGraphModel(const QString &modelPath, const QString &weightsPath)
{
    QFile model(modelPath), weights(weightsPath);
    if (!model.open(QIODevice::ReadOnly) || !weights.open(QIODevice::ReadOnly)) {
        m_error = QStringLiteral("cannot open the model %1").arg(model.isOpen() ? weightsPath : modelPath);
        return;
    }
    const QJsonObject root = QJsonDocument::fromJson(model.readAll()).object();
    try {
        VextilDepthwiseConvolution::registerType();
        Translator translate(m_net, readTensors(root.value(QStringLiteral("weightsManifest")).toArray(), weights.readAll()));
        for (const QJsonValue &n : root.value(QStringLiteral("modelTopology")).toObject().value(QStringLiteral("node")).toArray())
            translate.node(n.toObject());
        if (!translate.hasInput())
            fail(QStringLiteral("the model has no input"));
    } catch (const std::exception &e) {
        m_error = QStringLiteral("cannot read the model %1: %2").arg(modelPath, QString::fromUtf8(e.what()));
        m_net = cv::dnn::Net();
    }
}
