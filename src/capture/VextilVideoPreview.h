#pragma once

#include <VextilToolkit/VextilToolkitExport.h>

#include <QImage>
#include <QWidget>

#include <mutex>

/// The live camera picture: the newest frame, scaled to fill the view (cropping its edges).
class VEXTIL_EXPORT VextilVideoPreview : public QWidget {
    Q_OBJECT
public:
    explicit VextilVideoPreview(QWidget *parent = nullptr);

    /// Shows a frame; any thread. Only the newest frame is kept.
    void setFrame(const QImage &frame);
    /// The frame shown (or about to be).
    QImage frame() const;

protected:
    void paintEvent(QPaintEvent *) override;

private:
    mutable std::mutex m_mutex;  // the capture thread hands frames over
    QImage m_frame;
};
