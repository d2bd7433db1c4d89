#include "widgets/capture/VextilFaceProgressBoxView.h"

#include "core/VextilTexts.h"
#include "widgets/ui/VextilFrame.h"

VextilFaceProgressBoxView::VextilFaceProgressBoxView(QWidget *parent) : QWidget(parent), m_defaultColor(Qt::white)
{
    setupViews();
    setupConstraints();
}

void VextilFaceProgressBoxView::setupViews()
{
    m_label = new VextilLabel(this);
    QFont font = m_label->font();
    font.setPixelSize(18);
    m_label->setBaseFont(font);
    m_label->setAlignment(Qt::AlignCenter);
    m_label->setAdjustsFontSizeToFitWidth(true);
    QPalette palette = m_label->palette();
    palette.setColor(QPalette::WindowText, m_defaultColor);
    m_label->setPalette(palette);
    m_bar = new VextilFaceProgressBar(this);
    m_bar->setAccessibleName(VextilTexts::tr("Progress"));
    // The line holds the keyboard focus while the capture runs: screen readers speak changes of
    // the focused object's name, and Qt's AT-SPI bridge drops alerts.
    m_label->setFocusable(true);
    m_label->setAccessibleNameFor([this](const QString &) { return m_status.text(); });
    connect(&m_status, &VextilCaptureStatus::settled, m_label, &VextilLabel::refreshAccessibleName);
}

void VextilFaceProgressBoxView::setupConstraints()
{
    const QRectF box = rect();
    const QRectF bar = VextilFrame().centerX(box.center().x()).height(15).width(0.8 * box.width()).centerY(box.center().y() + 10).rect();
    m_bar->setGeometry(bar.toRect());
    // The text's line (20 high, 30 above the bar), grown by 6 above and below to hold the
    // focus ring clear of the text.
    const QRectF line = VextilFrame().centerX(box.center().x()).bottom(bar.top() - 30).width(box.width()).height(20).rect();
    m_label->setGeometry(line.adjusted(0, -kRingRoom, 0, kRingRoom).toRect());
}

void VextilFaceProgressBoxView::updateProgress(double progress)
{
    m_bar->updateProgress(progress);
    m_status.setProgress(progress);
}

void VextilFaceProgressBoxView::updateInstructionsLabelWithText(const QString &text)
{
    m_label->setText(text, false);
    m_status.setInstruction(text);
}

void VextilFaceProgressBoxView::isProgressBarHidden(bool hidden)
{
    m_bar->setHidden(hidden);
    m_status.setProgressShown(!hidden);
}

void VextilFaceProgressBoxView::setSmilePrompt(bool shown) { m_status.setSmilePrompt(shown); }
