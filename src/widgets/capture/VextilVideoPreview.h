#pragma once

#include <QImage>
#include <QWidget>

/// The live camera picture: the newest frame, scaled to fill the view (cropping its edges),
/// mirrored or not. GUI thread only.
class VextilVideoPreview : public QWidget {
    Q_OBJECT
public:
    explicit VextilVideoPreview(QWidget *parent = nullptr);

    /// Shows a frame in place of the last one.
    void setFrame(const QImage &frame);
    /// The frame shown (or about to be).
    QImage frame() const { return m_frame; }
    /// Whether frames are drawn mirrored around the vertical axis, as a selfie preview is.
    void setMirrored(bool mirrored);
    bool isMirrored() const { return m_mirrored; }

protected:
    void paintEvent(QPaintEvent *) override;

private:
    QImage m_frame;
    bool m_mirrored = false;
};
