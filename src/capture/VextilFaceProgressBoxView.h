#pragma once

#include <VextilToolkit/VextilFaceProgressBar.h>
#include <VextilToolkit/VextilLabel.h>
#include <VextilToolkit/VextilToolkitExport.h>

#include <QWidget>

/// The camera screen's instructions line above the progress bar.
class VEXTIL_EXPORT VextilFaceProgressBoxView : public QWidget {
    Q_OBJECT
public:
    explicit VextilFaceProgressBoxView(QWidget *parent = nullptr);

    VextilLabel *instructionsLabel() const { return m_label; }
    /// The label's text colour: white.
    QColor defaultColor() const { return m_defaultColor; }
    VextilFaceProgressBar *faceProgressBar() const { return m_bar; }

    /// Animates the bar to a fraction; any thread, applied on the GUI thread in call order.
    void updateProgress(double progress);
    /// Shows a new instruction (announced to assistive technology); any thread, in call order.
    void updateInstructionsLabelWithText(const QString &text);
    /// Hides or shows the bar (the label stays); any thread, in call order.
    void isProgressBarHidden(bool hidden);

protected:
    void resizeEvent(QResizeEvent *) override { setupConstraints(); }

private:
    void setupViews();
    void setupConstraints();

    VextilLabel *m_label = nullptr;
    QColor m_defaultColor;
    VextilFaceProgressBar *m_bar = nullptr;
};
