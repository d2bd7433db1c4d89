#pragma once

#include <QImage>
#include <QWidget>

/// The live camera picture: the newest frame, scaled to fill the view (cropping its edges).
/// GUI thread only.
class VextilVideoPreview : public QWidget {
    Q_OBJECT
public:
    explicit VextilVideoPreview(QWidget *parent = nullptr);

    /// Shows a frame in place of the last one.
    void setFrame(const QImage &frame);
    /// The frame shown (or about to be).
    QImage frame() const { return m_frame; }

protected:
    void paintEvent(QPaintEvent *) override;

private:
    QImage m_frame;
};
