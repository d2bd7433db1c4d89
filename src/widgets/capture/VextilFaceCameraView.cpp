#include "widgets/capture/VextilFaceCameraView.h"

#include "core/VextilTexts.h"
#include "widgets/ui/VextilAccessibility.h"
#include "widgets/ui/VextilFrame.h"

#include <QCoreApplication>
#include <QPainter>

namespace {

// The popup's rounded, translucent box with its border.
class PopupBox : public QWidget {
public:
    using QWidget::QWidget;

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(VextilFaceCameraView::popupTextColor(), 2.0));
        painter.setBrush(VextilFaceCameraView::popupBackgroundColor());
        painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), 15, 15);
    }
};

}  // namespace

VextilFaceCameraView::VextilFaceCameraView(QWidget *parent) : QWidget(parent)
{
    setupViews();
    setupConstraints();
}

void VextilFaceCameraView::paintEvent(QPaintEvent *)
{
    QPainter(this).fillRect(rect(), Qt::black);
}

void VextilFaceCameraView::setupViews()
{
    m_preview = new VextilVideoPreview(this);
    VextilAccessibility::setRole(m_preview, QAccessible::Animation);  // the live picture
    m_preview->setAccessibleName(VextilTexts::tr("Camera preview"));
    m_whiteMask = new VextilImageView(QStringLiteral("borda_branca"), this);
    m_whiteMask->setContentMode(VextilImageView::ContentMode::ScaleAspectFill);
    m_greenMask = new VextilImageView(QStringLiteral("borda_verde"), this);
    m_greenMask->setContentMode(VextilImageView::ContentMode::ScaleAspectFill);
    m_greenMask->hide();
    m_whiteMask->setAccessibleName(VextilTexts::tr("Face frame"));
    m_greenMask->setAccessibleName(VextilTexts::tr("Face frame, face found"));
    m_logo = new VextilImageView(QStringLiteral("logo_vextil"), this);
    m_logo->setAccessibleName(QStringLiteral("Vextil"));

    m_popup = new PopupBox(this);
    m_popup->hide();
    m_popupLabel = new VextilLabel(m_popup);
    m_popupLabel->setAlignment(Qt::AlignCenter);
    QFont font = m_popupLabel->font();
    font.setPixelSize(17);  // the platform's default label size
    m_popupLabel->setBaseFont(font);
    m_popupLabel->setAdjustsFontSizeToFitWidth(true);
    QPalette palette = m_popupLabel->palette();
    palette.setColor(QPalette::WindowText, popupTextColor());
    m_popupLabel->setPalette(palette);
    m_popupLabel->setText(VextilTexts::tr("SMILE!"));
    m_popupLabel->hide();
}

void VextilFaceCameraView::setupConstraints()
{
    const QRectF view = rect();
    m_preview->setGeometry(rect());
    // Width, top and both centres pinned: each frame covers the view and crops its artwork.
    const QRect mask = VextilFrame().width(view.width()).top(0).centerX(view.center().x()).bottom(view.height()).pixels();
    m_whiteMask->setGeometry(mask);
    m_greenMask->setGeometry(mask);
    // The logo's top follows 0.925 x the view's top edge, which is 0 in the view's own terms.
    m_logo->setGeometry(VextilFrame().size(m_logo->sizeHint()).top(0.925 * view.top()).right(view.right()).pixels());
    m_popup->setGeometry(VextilFrame().width(150).height(45).centerX(view.center().x()).centerY(view.center().y()).pixels());
    const QSize label = m_popupLabel->sizeHint().boundedTo(m_popup->size());
    m_popupLabel->setGeometry(VextilFrame().size(label).centerX(75).centerY(22.5).pixels());
}

void VextilFaceCameraView::changeMaskState()
{
    m_greenMask->setHidden(m_whiteMask->isHidden());
    m_whiteMask->setHidden(!m_whiteMask->isHidden());
}

void VextilFaceCameraView::isPopupHidden(bool hidden)
{
    m_popup->setHidden(hidden);
    m_popupLabel->setHidden(hidden);  // spoken through the screen's status, which has the focus
}
