#pragma once

#include "capture/VextilCameraColors.h"

#include "widgets/capture/VextilVideoPreview.h"
#include "widgets/ui/VextilImageView.h"
#include "widgets/ui/VextilLabel.h"

#include <QWidget>

/// The camera screen's picture area: the live camera picture under a face frame in white (no
/// steady face) or green (face being collected), the logo, and a "SMILE!" popup in the middle.
/// GUI thread only.
class VextilFaceCameraView : public QWidget {
    Q_OBJECT
public:
    explicit VextilFaceCameraView(QWidget *parent = nullptr);

    VextilImageView *whiteMaskView() const { return m_whiteMask; }
    VextilImageView *greenMaskView() const { return m_greenMask; }
    VextilImageView *vextilLogoView() const { return m_logo; }
    QWidget *popupView() const { return m_popup; }
    VextilLabel *popupLabel() const { return m_popupLabel; }
    /// The live picture; the camera hands it frames.
    VextilVideoPreview *videoPreviewLayer() const { return m_preview; }

    /// Swaps the white and the green frame.
    void changeMaskState();
    /// Whether the green frame (a face is in it) shows.
    bool isFaceFound() const { return !m_greenMask->isHidden(); }
    /// Hides or shows the "SMILE!" popup.
    void isPopupHidden(bool hidden);

    /// Fixed colours of the popup.
    static QColor popupTextColor() { return VextilCameraColors::popupText(); }
    static QColor popupBackgroundColor() { return VextilCameraColors::popupBackground(); }

protected:
    void resizeEvent(QResizeEvent *) override { setupConstraints(); }
    void paintEvent(QPaintEvent *) override;

private:
    void setupViews();
    void setupConstraints();

    VextilVideoPreview *m_preview = nullptr;
    VextilImageView *m_whiteMask = nullptr;
    VextilImageView *m_greenMask = nullptr;
    VextilImageView *m_logo = nullptr;
    QWidget *m_popup = nullptr;
    VextilLabel *m_popupLabel = nullptr;
};
