#pragma once

#include <opencv2/dnn.hpp>

#include <array>
#include <functional>
#include <optional>
#include <vector>

/// A 3x3 depthwise convolution (one filter per channel), as an OpenCV DNN layer.
///
/// OpenCV 4.6 runs such layers on a scalar path when the planes are narrower than about 20
/// pixels, and the face networks do most of their depthwise work on 7 to 16 pixel planes. This
/// layer runs every plane through row-wise multiply-adds the compiler vectorises instead.
class VextilDepthwiseConvolution : public cv::dnn::Layer {
public:
    /// Type name under which the layer is registered with OpenCV's layer factory.
    static const char *typeName();
    /// Registers typeName() once; any thread.
    static void registerType();
    /// Layer parameters for `channels` filters of 3x3 weights ([channels][1][3][3]) and an
    /// optional bias, stride 1 or 2, padded as TensorFlow's "same". With `reluOfSum`, the layer
    /// convolves the ReLU of the sum of its inputs, which saves a pass over memory.
    static cv::dnn::LayerParams params(const std::string &name, const cv::Mat &weights, const cv::Mat &bias, int stride,
                                       bool reluOfSum);

    /// Runs `setUp` while every stride-1 3x3 depthwise convolution OpenCV builds is this layer,
    /// for networks read from files. `setUp` must create the layers (run a first forward pass).
    /// Other convolutions are OpenCV's own. Calls are serialised.
    static void replacingOpenCvDepthwise(const std::function<void()> &setUp);

    explicit VextilDepthwiseConvolution(const cv::dnn::LayerParams &params);

    bool getMemoryShapes(const std::vector<cv::dnn::MatShape> &inputs, int requiredOutputs,
                         std::vector<cv::dnn::MatShape> &outputs, std::vector<cv::dnn::MatShape> &internals) const override;
    void finalize(cv::InputArrayOfArrays inputs, cv::OutputArrayOfArrays outputs) override;
    void forward(cv::InputArrayOfArrays inputs, cv::OutputArrayOfArrays outputs, cv::OutputArrayOfArrays internals) override;

private:
    // The planes of one forward pass, spread over OpenCV's worker threads.
    class PlaneLoop : public cv::ParallelLoopBody {
    public:
        PlaneLoop(const VextilDepthwiseConvolution &layer, std::vector<const float *> sources, float *target);
        void run(int planes) const;
        void operator()(const cv::Range &planes) const override;

    private:
        const VextilDepthwiseConvolution &m_layer;
        std::vector<const float *> m_sources;
        float *m_target;
    };

    static cv::Ptr<cv::dnn::Layer> create(cv::dnn::LayerParams &params);
    static cv::Ptr<cv::dnn::Layer> createInsteadOfConvolution(cv::dnn::LayerParams &params);
    int paddedWidth() const { return m_inWidth + m_padLeft + m_padRight; }
    void pad(const std::vector<const float *> &planes, std::vector<float> &padded) const;
    void convolvePlane(const std::vector<float> &padded, int channel, std::vector<float> &result, float *out) const;

    cv::Mat m_weights;  // [channels][9]
    std::vector<float> m_bias;
    bool m_reluOfSum = false;
    std::array<int, 4> padding(int height, int width) const;  // top, left, bottom, right

    int m_stride = 1;
    std::optional<std::array<int, 4>> m_pads;  // explicit; otherwise "same"
    int m_padTop = 0, m_padLeft = 0, m_padBottom = 0, m_padRight = 0;
    int m_inHeight = 0, m_inWidth = 0, m_outHeight = 0, m_outWidth = 0;
};
