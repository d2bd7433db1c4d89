#pragma once

#include "capture/VextilCaptureStatus.h"
#include "widgets/capture/VextilFaceProgressBar.h"
#include "widgets/ui/VextilLabel.h"

#include <QWidget>

/// The camera screen's instructions line above the progress bar. GUI thread only.
class VextilFaceProgressBoxView : public QWidget {
    Q_OBJECT
public:
    explicit VextilFaceProgressBoxView(QWidget *parent = nullptr);

    VextilLabel *instructionsLabel() const { return m_label; }
    /// The label's text colour: white.
    QColor defaultColor() const { return m_defaultColor; }
    VextilFaceProgressBar *faceProgressBar() const { return m_bar; }

    /// Animates the bar to a fraction.
    void updateProgress(double progress);
    /// Shows a new instruction (announced to assistive technology).
    void updateInstructionsLabelWithText(const QString &text);
    /// Hides or shows the bar (the label stays).
    void isProgressBarHidden(bool hidden);
    /// Whether the smile is being asked for: the status says "SMILE!" while it is.
    void setSmilePrompt(bool shown);
    /// The focusable status (the instructions line), whose accessible name says the whole state
    /// (see VextilCaptureStatusText); a screen reader speaks it as it changes.
    QWidget *statusView() const { return m_label; }
    /// How long the status waits for the rest of a change before it is said.
    static constexpr int kStatusSettlesMs = VextilCaptureStatus::kSettlesMs;

protected:
    void resizeEvent(QResizeEvent *) override { setupConstraints(); }

private:
    static constexpr double kRingRoom = 6;
    void setupViews();
    void setupConstraints();

    VextilLabel *m_label = nullptr;
    VextilCaptureStatus m_status;
    QColor m_defaultColor;
    VextilFaceProgressBar *m_bar = nullptr;
};
