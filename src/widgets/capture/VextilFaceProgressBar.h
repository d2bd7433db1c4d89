#pragma once

#include "capture/VextilCameraColors.h"

#include <QPointer>
#include <QVariantAnimation>
#include <QWidget>

/// A thin bar that fills from left to right as neutral face images are collected. GUI thread.
class VextilFaceProgressBar : public QWidget {
    Q_OBJECT
    Q_PROPERTY(double strokeEnd READ strokeEnd)
public:
    explicit VextilFaceProgressBar(QWidget *parent = nullptr);

    /// Animates the fill to `progress` (0.0 to 1.0) linearly over 0.5 s; a newer value replaces
    /// a running animation, which then starts from wherever the fill is.
    void updateProgress(double progress);
    /// Whether the fill has been drawn (it is, lazily, on the first update).
    bool hasProgressBar() const { return m_hasFill; }
    /// The value the fill is heading for.
    double strokeEnd() const { return m_strokeEnd; }
    /// The fill shown now.
    double displayedStrokeEnd() const { return m_shown; }
    /// The running animation, if any.
    const QVariantAnimation *animation() const { return m_animation; }

    static QColor trackColor() { return VextilCameraColors::progressTrack(); }
    static QColor fillColor() { return VextilCameraColors::progressFill(); }
    static constexpr int kAnimationMs = 500;

protected:
    void paintEvent(QPaintEvent *) override;

private:
    bool m_hasFill = false;
    double m_strokeEnd = 0;
    double m_shown = 0;
    QPointer<QVariantAnimation> m_animation;  // null once it stops and deletes itself
};
