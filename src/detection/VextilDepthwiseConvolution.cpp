#include "detection/VextilDepthwiseConvolution.h"

#include <opencv2/core/utility.hpp>
#include <opencv2/dnn/all_layers.hpp>

#include <algorithm>
#include <mutex>

namespace {

// Our own parameter keys, apart from OpenCV's names. Padding is top, left, bottom, right.
constexpr const char *kPads = "vextil_pads";
constexpr const char *kReluOfSum = "vextil_relu_of_sum";
constexpr const char *kStride = "vextil_stride";

#if defined(__SANITIZE_THREAD__)
extern "C" void __tsan_acquire(void *address);
extern "C" void __tsan_release(void *address);
void announce(const void *edge) { __tsan_release(const_cast<void *>(edge)); }
void await(const void *edge) { __tsan_acquire(const_cast<void *>(edge)); }
#else
void announce(const void *) {}
void await(const void *) {}
#endif

std::mutex &replacementMutex()
{
    static std::mutex mutex;
    return mutex;
}

// The loops all the time goes into. On x86-64 Linux, a second copy of each for AVX2 and FMA is
// picked at load time on processors that have them. Not under ThreadSanitizer: the picking runs
// before its runtime is up, and crashes.
#if defined(__GNUC__) && defined(__x86_64__) && defined(__linux__) && !defined(__SANITIZE_THREAD__)
#define VEXTIL_WITH_AVX2_COPY __attribute__((target_clones("arch=x86-64-v3", "default")))
#else
#define VEXTIL_WITH_AVX2_COPY
#endif

// One output run at the padded row stride: all nine taps summed in registers, so each output
// is stored once.
VEXTIL_WITH_AVX2_COPY
void convolveRun(float *out, const float *padded, int width, const float *k, float bias, int count)
{
    const float *r0 = padded, *r1 = padded + width, *r2 = padded + 2 * width;
    for (int i = 0; i < count; ++i) {
        out[i] = bias + k[0] * r0[i] + k[1] * r0[i + 1] + k[2] * r0[i + 2]
                 + k[3] * r1[i] + k[4] * r1[i + 1] + k[5] * r1[i + 2]
                 + k[6] * r2[i] + k[7] * r2[i + 1] + k[8] * r2[i + 2];
    }
}

// One output row of a stride-2 convolution from three padded input rows.
VEXTIL_WITH_AVX2_COPY
void convolveRowStride2(float *out, const float *r0, const float *r1, const float *r2, const float *k, float bias, int count)
{
    for (int i = 0; i < count; ++i) {
        const int x = 2 * i;
        out[i] = bias + k[0] * r0[x] + k[1] * r0[x + 1] + k[2] * r0[x + 2]
                 + k[3] * r1[x] + k[4] * r1[x + 1] + k[5] * r1[x + 2]
                 + k[6] * r2[x] + k[7] * r2[x + 1] + k[8] * r2[x + 2];
    }
}

}  // namespace

const char *VextilDepthwiseConvolution::typeName() { return "VextilDepthwise3x3"; }

void VextilDepthwiseConvolution::registerType()
{
    static std::once_flag once;
    std::call_once(once, [] { cv::dnn::LayerFactory::registerLayer(typeName(), &create); });
}

cv::dnn::LayerParams VextilDepthwiseConvolution::params(const std::string &name, const cv::Mat &weights, const cv::Mat &bias,
                                                        int stride, bool reluOfSum)
{
    cv::dnn::LayerParams lp;
    lp.set(kReluOfSum, reluOfSum);
    lp.set(kStride, stride);
    lp.name = name;
    lp.type = typeName();
    lp.blobs = bias.empty() ? std::vector<cv::Mat>{weights} : std::vector<cv::Mat>{weights, bias};
    return lp;
}

cv::Ptr<cv::dnn::Layer> VextilDepthwiseConvolution::create(cv::dnn::LayerParams &params)
{
    return cv::makePtr<VextilDepthwiseConvolution>(params);
}

cv::Ptr<cv::dnn::Layer> VextilDepthwiseConvolution::createInsteadOfConvolution(cv::dnn::LayerParams &params)
{
    // OpenCV's own layer reads the parameters; it is kept unless they describe our case.
    cv::Ptr<cv::dnn::BaseConvolutionLayer> own = cv::dnn::ConvolutionLayer::create(params);
    const bool depthwise = !params.blobs.empty() && params.blobs[0].dims == 4 && params.blobs[0].size[1] == 1
                           && params.get<int>("group", 1) == own->numOutput && own->numOutput > 1;
    const auto all = [](const std::vector<size_t> &values, size_t wanted) {
        return values.size() == 2 && values[0] == wanted && values[1] == wanted;
    };
    if (!depthwise || !all(own->kernel_size, 3) || !all(own->strides, 1) || !all(own->dilations, 1)
        || (own->padMode.empty() && (own->pads_begin.size() != 2 || own->pads_end.size() != 2)))
        return own;
    cv::dnn::LayerParams ours = params;
    if (own->padMode != "SAME") {
        std::vector<int> pads(4, 0);
        if (own->padMode.empty())
            pads = {int(own->pads_begin[0]), int(own->pads_begin[1]), int(own->pads_end[0]), int(own->pads_end[1])};
        ours.set(kPads, cv::dnn::DictValue::arrayInt(pads.data(), 4));
    }
    return cv::makePtr<VextilDepthwiseConvolution>(ours);
}

void VextilDepthwiseConvolution::replacingOpenCvDepthwise(const std::function<void()> &setUp)
{
    std::lock_guard lock(replacementMutex());
    // The factory keeps a stack per type: unregistering brings OpenCV's own constructor back.
    cv::dnn::LayerFactory::registerLayer("Convolution", &createInsteadOfConvolution);
    try {
        setUp();
    } catch (...) {
        cv::dnn::LayerFactory::unregisterLayer("Convolution");
        throw;
    }
    cv::dnn::LayerFactory::unregisterLayer("Convolution");
}

VextilDepthwiseConvolution::VextilDepthwiseConvolution(const cv::dnn::LayerParams &params)
{
    setParamsFrom(params);
    CV_Assert(!blobs.empty() && blobs[0].dims == 4 && blobs[0].size[1] == 1 && blobs[0].size[2] == 3 && blobs[0].size[3] == 3);
    const int channels = blobs[0].size[0];
    m_weights = blobs[0].reshape(1, channels).clone();
    m_bias.assign(size_t(channels), 0.f);
    if (blobs.size() > 1)
        std::copy_n(blobs[1].ptr<float>(), channels, m_bias.begin());
    m_reluOfSum = params.get<bool>(kReluOfSum, false);
    m_stride = params.get<int>(kStride, 1);
    CV_Assert(m_stride == 1 || m_stride == 2);
    if (params.has(kPads)) {
        const cv::dnn::DictValue &pads = params.get(kPads);
        m_pads = {pads.get<int>(0), pads.get<int>(1), pads.get<int>(2), pads.get<int>(3)};
    }
}

std::array<int, 4> VextilDepthwiseConvolution::padding(int height, int width) const
{
    if (m_pads)
        return *m_pads;
    // As TensorFlow's "same": ceil(size / stride) outputs, the odd pixel of padding at the end.
    const auto total = [this](int size) { return std::max(((size + m_stride - 1) / m_stride - 1) * m_stride + 3 - size, 0); };
    const int vertical = total(height), horizontal = total(width);
    return {vertical / 2, horizontal / 2, vertical - vertical / 2, horizontal - horizontal / 2};
}

bool VextilDepthwiseConvolution::getMemoryShapes(const std::vector<cv::dnn::MatShape> &inputs, int,
                                                 std::vector<cv::dnn::MatShape> &outputs, std::vector<cv::dnn::MatShape> &) const
{
    CV_Assert(!inputs.empty() && inputs[0].size() == 4 && inputs[0][1] == m_weights.rows);
    for (const cv::dnn::MatShape &shape : inputs)
        CV_Assert(shape == inputs[0]);
    const cv::dnn::MatShape &in = inputs[0];
    const std::array<int, 4> pads = padding(in[2], in[3]);
    outputs.assign(1, cv::dnn::MatShape{in[0], in[1], (in[2] + pads[0] + pads[2] - 3) / m_stride + 1,
                                        (in[3] + pads[1] + pads[3] - 3) / m_stride + 1});
    return false;
}

void VextilDepthwiseConvolution::finalize(cv::InputArrayOfArrays inputs, cv::OutputArrayOfArrays outputs)
{
    std::vector<cv::Mat> in, out;
    inputs.getMatVector(in);
    outputs.getMatVector(out);
    m_inHeight = in[0].size[2];
    m_inWidth = in[0].size[3];
    m_outHeight = out[0].size[2];
    m_outWidth = out[0].size[3];
    const std::array<int, 4> pads = padding(m_inHeight, m_inWidth);
    m_padTop = pads[0];
    m_padLeft = pads[1];
    m_padBottom = pads[2];
    m_padRight = pads[3];
}

void VextilDepthwiseConvolution::forward(cv::InputArrayOfArrays inputs, cv::OutputArrayOfArrays outputs, cv::OutputArrayOfArrays)
{
    std::vector<cv::Mat> in, out;
    inputs.getMatVector(in);
    outputs.getMatVector(out);
    std::vector<const float *> sources;
    for (const cv::Mat &input : in)
        sources.push_back(input.ptr<float>());
    const PlaneLoop loop(*this, sources, out[0].ptr<float>());
    loop.run(in[0].size[0] * m_weights.rows);
}

VextilDepthwiseConvolution::PlaneLoop::PlaneLoop(const VextilDepthwiseConvolution &layer, std::vector<const float *> sources, float *target)
    : m_layer(layer), m_sources(std::move(sources)), m_target(target)
{
}

void VextilDepthwiseConvolution::PlaneLoop::run(int planes) const
{
    // OpenCV's worker pool hands stripes over with its own synchronisation, which
    // ThreadSanitizer cannot see in Debian's uninstrumented build: declare the edges it gives.
    announce(this);
    cv::parallel_for_(cv::Range(0, planes), *this);
    await(this);
}

void VextilDepthwiseConvolution::PlaneLoop::operator()(const cv::Range &planes) const
{
    await(this);
    const VextilDepthwiseConvolution &l = m_layer;
    const size_t inPlane = size_t(l.m_inHeight) * size_t(l.m_inWidth), outPlane = size_t(l.m_outHeight) * size_t(l.m_outWidth);
    std::vector<float> padded, result;
    std::vector<const float *> plane(m_sources.size());
    for (int p = planes.start; p < planes.end; ++p) {
        for (size_t i = 0; i < m_sources.size(); ++i)
            plane[i] = m_sources[i] + size_t(p) * inPlane;
        l.pad(plane, padded);
        l.convolvePlane(padded, p % l.m_weights.rows, result, m_target + size_t(p) * outPlane);
    }
    announce(this);
}

void VextilDepthwiseConvolution::pad(const std::vector<const float *> &planes, std::vector<float> &padded) const
{
    const int width = paddedWidth();
    // One spare row: the last output row's right-hand taps read two values past the border.
    padded.assign(size_t(width) * size_t(m_inHeight + m_padTop + m_padBottom + 1), 0.f);
    for (int y = 0; y < m_inHeight; ++y) {
        float *row = padded.data() + (y + m_padTop) * width + m_padLeft;
        const size_t at = size_t(y) * size_t(m_inWidth);
        std::copy_n(planes[0] + at, m_inWidth, row);
        for (size_t i = 1; i < planes.size(); ++i)
            for (int x = 0; x < m_inWidth; ++x)
                row[x] += planes[i][at + size_t(x)];
        if (m_reluOfSum)
            for (int x = 0; x < m_inWidth; ++x)
                row[x] = std::max(row[x], 0.f);
    }
}

void VextilDepthwiseConvolution::convolvePlane(const std::vector<float> &padded, int channel, std::vector<float> &result, float *out) const
{
    const int width = paddedWidth();
    const float *k = m_weights.ptr<float>(channel);
    const float bias = m_bias[size_t(channel)];
    if (m_stride == 2) {
        for (int y = 0; y < m_outHeight; ++y) {
            const float *top = padded.data() + 2 * y * width;
            convolveRowStride2(out + size_t(y) * size_t(m_outWidth), top, top + width, top + 2 * width, k, bias, m_outWidth);
        }
        return;
    }
    // Stride 1: outputs are computed at the padded row stride, as one long run; the two extra
    // values per row are dropped when the rows are copied out.
    const int count = m_outHeight * width;
    result.resize(size_t(count));
    convolveRun(result.data(), padded.data(), width, k, bias, count);
    for (int y = 0; y < m_outHeight; ++y)
        std::copy_n(result.data() + y * width, m_outWidth, out + size_t(y) * size_t(m_outWidth));
}
