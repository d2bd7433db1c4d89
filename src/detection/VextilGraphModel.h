#pragma once

#include <QString>

#include <opencv2/dnn.hpp>

/// Reads a TensorFlow.js graph model (a `model.json` with its topology and weights manifest,
/// and the weights file it names) into an OpenCV DNN network.
///
/// Only the operations of small image classifiers are understood: 2-D convolutions (plain,
/// depthwise and fused with a bias and a ReLU), max pooling, sums, ReLU, a spatial mean and
/// softmax, over one channels-last input. Anything else fails the load with the operation's
/// name, rather than building a network that computes something else. Weights are float32 or
/// uint8-quantised.
class VextilGraphModel {
public:
    /// Reads the model; check isLoaded().
    VextilGraphModel(const QString &modelPath, const QString &weightsPath);

    bool isLoaded() const { return m_error.isEmpty(); }
    /// Why reading failed; empty when it succeeded.
    QString errorString() const { return m_error; }
    /// The network, taking NCHW blobs; empty when reading failed.
    cv::dnn::Net &net() { return m_net; }

private:
    cv::dnn::Net m_net;
    QString m_error;
};
