#include "detection/VextilGraphModel.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <vector>

namespace {

// A small graph model written to disk: input 3x3x2 channels-last; depthwise 3x3 "same"; the
// input added back; a 3x3 "valid" convolution to two channels with bias and ReLU; mean; softmax.
class GraphModelTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        for (int i = 0; i < 18; ++i)
            input[size_t(i)] = float((i * 7) % 11) / 10;
        for (int i = 0; i < 18; ++i)
            depthwise[size_t(i)] = 0.1f * float(i + 1) - 0.9f;
        for (int i = 0; i < 36; ++i)
            filters[size_t(i)] = std::sin(float(i));
    }

    static QJsonObject node(const char *name, const char *op, const QStringList &inputs, const QJsonObject &attr = {})
    {
        return {{"name", name}, {"op", op}, {"input", QJsonArray::fromStringList(inputs)}, {"attr", attr}};
    }
    static QJsonObject text(const char *value) { return {{"s", QString::fromLatin1(QByteArray(value).toBase64())}}; }
    static QJsonObject list(const char *key, const QJsonArray &values) { return {{"list", QJsonObject{{key, values}}}}; }
    static QJsonObject convolution(const char *padding, const QJsonArray &fused = {})
    {
        return {{"padding", text(padding)}, {"strides", list("i", {"1", "1", "1", "1"})}, {"fused_ops", list("s", fused)}};
    }
    static QJsonObject weight(const char *name, const QJsonArray &shape, const char *type = "float32")
    {
        return {{"name", name}, {"shape", shape}, {"dtype", type}};
    }

    // Writes the model with `extra` nodes after the softmax; returns the model's path.
    QString write(const QJsonArray &extra = {}, qsizetype weightBytes = -1)
    {
        QJsonArray nodes{node("x", "Placeholder", {}), node("dwf", "Const", {}), node("f", "Const", {}), node("b", "Const", {}),
                         node("axes", "Const", {}), node("d", "DepthwiseConv2dNative", {"x", "dwf"}, convolution("SAME")),
                         node("s", "AddV2", {"d", "x"}),
                         node("c", "_FusedConv2D", {"s", "f", "b"}, convolution("VALID", {text("BiasAdd").value("s"), text("Relu").value("s")})),
                         node("m", "Mean", {"c", "axes"}), node("p", "Softmax", {"m"}), node("Identity", "Identity", {"p"})};
        for (const QJsonValue &n : extra)
            nodes.append(n);
        const QJsonArray weights{weight("dwf", {3, 3, 2, 1}), weight("f", {3, 3, 2, 2}), weight("b", {2}),
                                 weight("axes", {2}, "int32")};
        const QJsonObject model{{"modelTopology", QJsonObject{{"node", nodes}}},
                                {"weightsManifest", QJsonArray{QJsonObject{{"paths", QJsonArray{"w.bin"}}, {"weights", weights}}}}};
        QFile json(dir.filePath("model.json"));
        EXPECT_TRUE(json.open(QIODevice::WriteOnly));
        json.write(QJsonDocument(model).toJson());
        QByteArray bytes = raw(depthwise.data(), depthwise.size()) + raw(filters.data(), filters.size()) + raw(bias, 2);
        const qint32 axes[] = {1, 2};
        bytes += QByteArray(reinterpret_cast<const char *>(axes), sizeof axes);
        QFile bin(dir.filePath("w.bin"));
        EXPECT_TRUE(bin.open(QIODevice::WriteOnly));
        bin.write(weightBytes < 0 ? bytes : bytes.left(weightBytes));
        return json.fileName();
    }
    static QByteArray raw(const float *values, size_t count)
    {
        return QByteArray(reinterpret_cast<const char *>(values), qsizetype(count * sizeof(float)));
    }

    // The same computation written out plainly, all tensors channels-last.
    std::array<float, 2> expected() const
    {
        const auto at = [](int y, int x, int c) { return (y * 3 + x) * 2 + c; };
        std::array<float, 18> summed{};
        for (int y = 0; y < 3; ++y)
            for (int x = 0; x < 3; ++x)
                for (int c = 0; c < 2; ++c) {
                    float v = input[size_t(at(y, x, c))];
                    for (int dy = -1; dy <= 1; ++dy)
                        for (int dx = -1; dx <= 1; ++dx)
                            if (y + dy >= 0 && y + dy < 3 && x + dx >= 0 && x + dx < 3)
                                v += input[size_t(at(y + dy, x + dx, c))] * depthwise[size_t(((dy + 1) * 3 + dx + 1) * 2 + c)];
                    summed[size_t(at(y, x, c))] = v;
                }
        std::array<float, 2> out{};
        for (int o = 0; o < 2; ++o) {
            float v = bias[o];
            for (int k = 0; k < 18; ++k)
                v += summed[size_t(k)] * filters[size_t(k * 2 + o)];
            out[size_t(o)] = std::max(v, 0.f);
        }
        const float total = std::exp(out[0]) + std::exp(out[1]);
        return {std::exp(out[0]) / total, std::exp(out[1]) / total};
    }

    QTemporaryDir dir;
    std::array<float, 18> input{}, depthwise{};
    std::array<float, 36> filters{};
    float bias[2] = {0.3f, -0.2f};
};

TEST_F(GraphModelTest, ComputesWhatTheGraphSaysInOpenCvsLayout)
{
    VextilGraphModel model(write(), dir.filePath("w.bin"));
    ASSERT_TRUE(model.isLoaded()) << qPrintable(model.errorString());
    // Channels-last input to OpenCV's channels-first blob.
    const int shape[] = {1, 2, 3, 3};
    cv::Mat blob(4, shape, CV_32F);
    for (int c = 0; c < 2; ++c)
        for (int i = 0; i < 9; ++i)
            blob.ptr<float>()[c * 9 + i] = input[size_t(i * 2 + c)];
    model.net().setInput(blob);
    const cv::Mat out = model.net().forward();
    const std::array<float, 2> want = expected();
    ASSERT_EQ(out.total(), 2u);
    EXPECT_NEAR(out.ptr<float>()[0], want[0], 1e-4);
    EXPECT_NEAR(out.ptr<float>()[1], want[1], 1e-4);
    EXPECT_GT(std::abs(want[0] - want[1]), 0.05f) << "a case where a swapped layout shows";
}

TEST_F(GraphModelTest, RefusesWhatItCannotComputeAndSaysWhy)
{
    const auto error = [&](const QString &modelPath, const QString &weights) {
        VextilGraphModel model(modelPath, weights);
        EXPECT_TRUE(model.net().empty());
        return model.isLoaded() ? QString() : model.errorString();
    };
    EXPECT_TRUE(error(write({node("q", "Sigmoid", {"p"})}), dir.filePath("w.bin")).contains("Sigmoid"));
    EXPECT_TRUE(error(write({node("r", "Relu", {"nowhere"})}), dir.filePath("w.bin")).contains("nowhere"));
    EXPECT_TRUE(error(write({}, 40), dir.filePath("w.bin")).contains("shorter"));
    EXPECT_TRUE(error(dir.filePath("none.json"), dir.filePath("w.bin")).contains("none.json"));
    EXPECT_FALSE(error(write(), dir.filePath("none.bin")).isEmpty());
}

}  // namespace
