#include "widgets/review/VextilConfirmView.h"

#include "core/VextilTexts.h"
#include "widgets/ui/VextilAccessibility.h"
#include "widgets/ui/VextilFrame.h"
#include "core/VextilSchemeAccess.h"

#include <QCoreApplication>
#include <QPainter>

#include <algorithm>

namespace {

// The photo as the review's animation draws it.
class PhotoView : public QWidget {
public:
    PhotoView(const VextilPhotoAnimation *photo, QWidget *parent) : QWidget(parent), m_photo(photo) {}

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        m_photo->paint(painter, size());
    }

private:
    const VextilPhotoAnimation *m_photo;
};

}  // namespace

VextilConfirmView::VextilConfirmView(QWidget *parent) : QWidget(parent)
{
    setupView();
    setupConstraints();
    setupColors();
    connect(&m_photo, &VextilPhotoAnimation::changed, m_imageView, qOverload<>(&QWidget::update));
}

void VextilConfirmView::setupView()
{
    m_imageView = new PhotoView(&m_photo, this);
    VextilAccessibility::setRole(m_imageView, QAccessible::Graphic);  // before anything asks about it
    m_imageView->setAccessibleName(VextilTexts::tr("Captured photo"));
    m_messageLabel = new QLabel(this);
    QFont font = m_messageLabel->font();
    font.setPixelSize(kMessagePx);
    m_messageLabel->setFont(font);
    m_messageLabel->setWordWrap(true);
    m_messageLabel->setAlignment(Qt::AlignCenter);

    m_acceptButton = new VextilButton(this);
    m_acceptButton->setCornerRadius(5);
    font.setPixelSize(kButtonPx);
    font.setWeight(QFont::Bold);
    m_acceptButton->setFont(font);
    setAcceptButtonText(VextilTexts::tr("Yes, send"));

    m_cancelButton = new VextilButton(this);
    m_cancelButton->setCornerRadius(5);
    font.setWeight(QFont::Normal);
    m_cancelButton->setFont(font);
    m_cancelButton->setImageName(QStringLiteral("reload_icon"));
    m_cancelButton->setTintColor(QColor());  // the icon keeps its own colours
    setCancelButtonText(VextilTexts::tr("No, take another photo."));
}

void VextilConfirmView::setupConstraints()
{
    const QRectF view = rect();
    const QRectF cancel = VextilFrame().width(view.width() * 0.7).centerX(view.center().x()).bottom(view.bottom() - 25).height(view.height() * 0.07).rect();
    const QRectF accept = VextilFrame().width(view.width() * 0.7).centerX(view.center().x()).bottom(cancel.top() - 15).height(view.height() * 0.07).rect();
    m_cancelButton->setGeometry(cancel.toRect());
    m_acceptButton->setGeometry(accept.toRect());
    fitButtonTexts();
    // The photo takes 60% of the height, or less on a short screen (a phone on its side), where
    // the question would otherwise have no room left.
    const double question = QFontMetricsF(m_messageLabel->font())
                                .boundingRect(QRectF(0, 0, view.width() * 0.7, 1e6), Qt::TextWordWrap | Qt::AlignCenter, m_messageLabel->text())
                                .height();
    const double imageHeight = std::max(0.0, std::min(view.height() * 0.6, accept.top() - 15 - question - 15 - (view.top() + 15)));
    const QRectF image = VextilFrame().top(view.top() + 15).width(view.width() * 0.75).centerX(view.center().x()).height(imageHeight).rect();
    const QRectF message = VextilFrame().top(image.bottom() + 15).width(view.width() * 0.7).centerX(view.center().x()).bottom(accept.top() - 15).rect();
    m_imageView->setGeometry(image.toRect());
    m_messageLabel->setGeometry(message.toRect());
}

void VextilConfirmView::fitButtonTexts()
{
    // The titles shrink to the buttons' height and width on small screens, never grow.
    if (!m_acceptButton || !m_cancelButton)
        return;  // still being built
    for (VextilButton *button : {m_acceptButton, m_cancelButton}) {
        QFont font = button->font();
        const double icon = button->imageName().isEmpty() ? 0 : button->height() * 0.5 + 2 * kIconSpacing;
        int pixels = std::clamp(int(button->height() * 0.6), kSmallestPx, kButtonPx);
        for (; pixels > kSmallestPx; --pixels) {
            font.setPixelSize(pixels);
            if (QFontMetricsF(font).horizontalAdvance(button->text()) + icon <= button->width() - 8)
                break;
        }
        font.setPixelSize(pixels);
        button->setFont(font);
    }
}

void VextilConfirmView::setupColors()
{
    const auto scheme = currentColorScheme();
    m_background = scheme->backgroundColor();
    m_acceptButton->setBackgroundColor(scheme->buttonBackgroundColorForState(kVextilHighlighted));
    m_acceptButton->setTitleColor(scheme->buttonTintColorForState(kVextilHighlighted));
    m_cancelButton->setBackgroundColor(scheme->cancelButtonBackgroundColorForState(kVextilHighlighted));
    m_cancelButton->setTitleColor(scheme->cancelButtonTintColorForState(kVextilHighlighted));
    QPalette palette = m_messageLabel->palette();
    palette.setColor(QPalette::WindowText, scheme->confirmQuestionTextColor());
    m_messageLabel->setPalette(palette);
}

void VextilConfirmView::resizeEvent(QResizeEvent *)
{
    setupConstraints();
    drawMask();
    centerButtonAndImageWithSpacing(m_cancelButton, kIconSpacing);
}

void VextilConfirmView::drawMask()
{
    // Laid again around the photo at every layout pass: a desktop window or a phone turned
    // sideways resizes the screen while it shows. Its colour is the scheme's when first laid.
    if (!m_border)
        m_borderColor = currentColorScheme()->buttonBackgroundColorForState(kVextilHighlighted);
    m_border = QRectF(m_imageView->geometry()).adjusted(-5, -5, 5, 5);
    update();
}

void VextilConfirmView::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.fillRect(rect(), m_background);
    if (!m_border)
        return;
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(m_borderColor, 2.0));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(*m_border, 5, 5);
}

void VextilConfirmView::setMessageText(const QString &text)
{
    m_messageLabel->setText(text);
    m_messageLabel->setAccessibleName(text);
    // Said with either answer as it takes the focus: the question is what they answer.
    m_acceptButton->setAccessibleDescription(text);
    m_cancelButton->setAccessibleDescription(text);
    setupConstraints();
}

void VextilConfirmView::setAcceptButtonText(const QString &text)
{
    m_acceptButton->setText(text);
    m_acceptButton->setAccessibleName(text);
    fitButtonTexts();
}

void VextilConfirmView::setCancelButtonText(const QString &text)
{
    m_cancelButton->setText(text);
    m_cancelButton->setAccessibleName(text);
    fitButtonTexts();
}

void VextilConfirmView::setDocumentImage(const QImage &image) { m_photo.setStill(image); }

void VextilConfirmView::setFaceImages(std::shared_ptr<QList<QImage>> images)
{
    m_photo.setFrames(images ? *images : QList<QImage>());
}

QImage VextilConfirmView::currentImage() const { return m_photo.currentImage(); }
