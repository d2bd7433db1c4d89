#pragma once

#include "detection/VextilGraphModel.h"

#include <QImage>
#include <QRectF>
#include <QString>

/// Tells a smile from other expressions with a small grey-scale classifier (a mini-Xception
/// network over 64x64 pixels, seven expressions, "happy" among them), read as a TensorFlow.js
/// graph model (see VextilGraphModel).
///
/// The face is framed a fifth wider than the detector's box, averaged down to grey, and brought
/// to a fixed mean and contrast, so that dim and bright light read alike. On the labelled
/// photos it keeps a talking mouth and a closed-lip smirk apart from real smiles, which a
/// whole-face colour network did not.
class VextilGreyExpressionNet {
public:
    /// Loads the model compiled into the toolkit.
    VextilGreyExpressionNet();
    /// Loads a graph model (JSON) and its weights file; check isLoaded().
    VextilGreyExpressionNet(const QString &modelPath, const QString &weightsPath);

    bool isLoaded() const { return m_model.isLoaded(); }
    /// Why loading failed; empty when it succeeded.
    QString errorString() const { return m_model.errorString(); }
    /// The log-odds that the face in `faceBox` (a face detector's square box, image pixels,
    /// origin top left) smiles; 0 when the model is not loaded or the box misses the image.
    float smileLogOdds(const QImage &image, const QRectF &faceBox);

private:
    bool crop(const QImage &image, const QRectF &faceBox);

    VextilGraphModel m_model;
    cv::Mat m_region, m_grey, m_small, m_input, m_blob;
};
