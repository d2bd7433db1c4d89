#include "detection/VextilDepthwiseConvolution.h"

#include <gtest/gtest.h>
#include <opencv2/dnn/all_layers.hpp>
#include <opencv2/dnn/shape_utils.hpp>

#include <stdexcept>

namespace {

cv::Mat randomBlob(std::vector<int> shape, int seed)
{
    cv::Mat blob(int(shape.size()), shape.data(), CV_32F);
    cv::RNG(uint64(seed)).fill(blob, cv::RNG::UNIFORM, -1.0, 1.0);
    return blob;
}

// OpenCV's own depthwise convolution, "same" padding.
cv::dnn::LayerParams openCvDepthwise(const cv::Mat &weights, const cv::Mat &bias, int stride)
{
    cv::dnn::LayerParams lp;
    lp.name = "reference";
    lp.type = "Convolution";
    lp.set("num_output", weights.size[0]);
    lp.set("group", weights.size[0]);
    lp.set("kernel_size", weights.size[2]);
    lp.set("stride", stride);
    lp.set("pad_mode", "SAME");
    lp.set("bias_term", !bias.empty());
    lp.blobs = bias.empty() ? std::vector<cv::Mat>{weights} : std::vector<cv::Mat>{weights, bias};
    return lp;
}

cv::Mat runOne(cv::dnn::LayerParams lp, const std::vector<cv::Mat> &inputs)
{
    cv::dnn::Net net;
    const int id = net.addLayer(lp.name, lp.type, lp);
    std::vector<cv::String> names;
    for (size_t i = 0; i < inputs.size(); ++i) {
        names.push_back("in" + std::to_string(i));
        net.connect(0, int(i), id, int(i));
    }
    net.setInputsNames(names);
    for (size_t i = 0; i < inputs.size(); ++i)
        net.setInput(inputs[i], names[i]);
    return net.forward().clone();
}

TEST(DepthwiseConvolution, MatchesOpenCvOnNarrowWideAndOddPlanesAtBothStrides)
{
    VextilDepthwiseConvolution::registerType();
    for (int size : {7, 9, 14, 56}) {
        for (int stride : {1, 2}) {
            SCOPED_TRACE(testing::Message() << size << "x" << size << " stride " << stride);
            const cv::Mat weights = randomBlob({12, 1, 3, 3}, size), bias = randomBlob({12}, stride);
            const cv::Mat input = randomBlob({2, 12, size, size}, size + stride);
            const cv::Mat expected = runOne(openCvDepthwise(weights, bias, stride), {input});
            const cv::Mat actual = runOne(VextilDepthwiseConvolution::params("ours", weights, bias, stride, false), {input});
            ASSERT_EQ(cv::dnn::shape(actual), cv::dnn::shape(expected));
            EXPECT_LT(cv::norm(actual, expected, cv::NORM_INF), 1e-4);
        }
    }
}

TEST(DepthwiseConvolution, ConvolvesTheReluOfTheSumOfItsInputs)
{
    VextilDepthwiseConvolution::registerType();
    const cv::Mat weights = randomBlob({8, 1, 3, 3}, 1);
    const std::vector<cv::Mat> inputs{randomBlob({1, 8, 14, 14}, 2), randomBlob({1, 8, 14, 14}, 3), randomBlob({1, 8, 14, 14}, 4)};
    cv::Mat summed = inputs[0] + inputs[1] + inputs[2];
    summed = cv::max(summed, 0.0);
    const cv::Mat expected = runOne(openCvDepthwise(weights, cv::Mat(), 1), {summed});
    const cv::Mat actual = runOne(VextilDepthwiseConvolution::params("ours", weights, cv::Mat(), 1, true), inputs);
    EXPECT_LT(cv::norm(actual, expected, cv::NORM_INF), 1e-4);
}

TEST(DepthwiseConvolution, StandsInForOpenCvOnlyWhileReplacingAndOnlyForItsOwnCase)
{
    const auto create = [](cv::dnn::LayerParams lp) { return cv::dnn::LayerFactory::createLayerInstance("Convolution", lp); };
    const auto ours = [](const cv::Ptr<cv::dnn::Layer> &layer) { return !layer.dynamicCast<VextilDepthwiseConvolution>().empty(); };
    const cv::Mat weights3 = randomBlob({6, 1, 3, 3}, 5), weights5 = randomBlob({6, 1, 5, 5}, 6), full = randomBlob({6, 6, 3, 3}, 7);
    cv::dnn::LayerParams fullParams = openCvDepthwise(full, cv::Mat(), 1);
    fullParams.set("group", 1);

    const cv::Mat input = randomBlob({1, 6, 10, 10}, 8);
    const cv::Mat own = runOne(openCvDepthwise(weights3, cv::Mat(), 1), {input});
    cv::Mat replaced;
    VextilDepthwiseConvolution::replacingOpenCvDepthwise([&] {
        EXPECT_TRUE(ours(create(openCvDepthwise(weights3, cv::Mat(), 1))));
        EXPECT_FALSE(ours(create(openCvDepthwise(weights3, cv::Mat(), 2))));
        EXPECT_FALSE(ours(create(openCvDepthwise(weights5, cv::Mat(), 1))));
        EXPECT_FALSE(ours(create(fullParams)));
        replaced = runOne(openCvDepthwise(weights3, cv::Mat(), 1), {input});
    });
    EXPECT_LT(cv::norm(replaced, own, cv::NORM_INF), 1e-4);
    // Only inside the window, even when the set-up throws.
    EXPECT_THROW(VextilDepthwiseConvolution::replacingOpenCvDepthwise([] { throw std::runtime_error("set-up failed"); }),
                 std::runtime_error);
    EXPECT_FALSE(ours(create(openCvDepthwise(weights3, cv::Mat(), 1))));
}

}  // namespace
