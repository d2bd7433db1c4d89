#include "widgets/tutorial/VextilTutorialView.h"

#include "core/VextilBackdropBlur.h"
#include "core/VextilPortraitRegion.h"
#include "core/VextilTexts.h"
#include "widgets/ui/VextilFocusTrap.h"
#include "widgets/ui/VextilFrame.h"
#include "core/VextilSchemeAccess.h"

#include <QApplication>
#include <QCoreApplication>
#include <QGraphicsOpacityEffect>
#include <QPainter>
#include <QPointer>
#include <QPropertyAnimation>
#include <QScopedValueRollback>
#include <QTimer>

#include <algorithm>
#include <cmath>

namespace {

constexpr double kLabelAspect = 0.3673469387755102;  // 18 / 49

// What lies beneath the pop-up, blurred and darkened.
class BlurBackdrop : public QWidget {
public:
    explicit BlurBackdrop(QWidget *overlay) : QWidget(overlay), m_overlay(overlay) {}

    // Draws the overlay's parent and the siblings stacked beneath the overlay, not the overlay.
    void capture()
    {
        QWidget *under = m_overlay->parentWidget();
        // Rendering the parent delivers pending resize events, the overlay's among them, which
        // would ask for another capture.
        if (!under || m_overlay->size().isEmpty() || m_capturing || !under->isVisible())
            return;
        const QScopedValueRollback<bool> busy(m_capturing, true);
        const qreal ratio = devicePixelRatioF();
        QPixmap shot(m_overlay->size() * ratio);
        shot.setDevicePixelRatio(ratio);
        shot.fill(Qt::black);
        QPainter painter(&shot);
        painter.translate(-m_overlay->pos());
        under->render(&painter, QPoint(), QRegion(), QWidget::DrawWindowBackground);
        for (QObject *child : under->children()) {
            auto *sibling = qobject_cast<QWidget *>(child);
            if (sibling == m_overlay)
                break;  // the rest lies above the overlay
            if (sibling && sibling->isVisible())
                sibling->render(&painter, sibling->pos(), QRegion(), QWidget::DrawWindowBackground | QWidget::DrawChildren);
        }
        painter.end();
        m_shot = blurred(shot);
        update();
    }

    // The blur is applied once, to the picture, rather than as a live effect on this widget:
    // the overlay fades with an effect of its own, and Qt cannot nest widget effects.
    static QPixmap blurred(const QPixmap &shot) { return QPixmap::fromImage(VextilBackdropBlur::blurred(shot.toImage())); }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        painter.drawPixmap(0, 0, m_shot);
        painter.fillRect(rect(), QColor(0, 0, 0, 140));  // the dark style of the blur
    }

private:
    QWidget *m_overlay;
    QPixmap m_shot;
    bool m_capturing = false;
};

// The rounded box holding the tips.
class RoundedBox : public QWidget {
public:
    RoundedBox(QColor colour, QWidget *parent) : QWidget(parent), m_colour(colour) {}

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(m_colour);
        painter.drawRoundedRect(rect(), 5, 5);
    }

private:
    QColor m_colour;
};

}  // namespace

VextilTutorialView::VextilTutorialView(QWidget *parent) : QWidget(parent)
{
    VextilFocusTrap::setScope(this);  // while it is up, the keyboard stays on its button
    addBlurEffectView();
}

void VextilTutorialView::addBlurEffectView()
{
    m_reduceTransparency = VextilToolkitSettings::sharedInstance()->isReduceTransparencyEnabled();
    if (m_reduceTransparency) {
        // Black at 75%, box included, instead of a blur.
        auto *opacity = new QGraphicsOpacityEffect(this);
        opacity->setOpacity(0.75);
        setGraphicsEffect(opacity);
    } else {
        m_blur = new BlurBackdrop(this);
        m_blur->setGeometry(rect());
    }
    addViews();
}

void VextilTutorialView::addViews()
{
    const auto scheme = currentColorScheme();
    m_content = new RoundedBox(scheme->popUpBackgroundColor(), this);
    for (auto &icon : m_icons) {
        icon = new VextilImageView({}, m_content);
        icon->setContentMode(VextilImageView::ContentMode::ScaleAspectFit);
    }
    for (auto &label : m_labels) {
        label = new VextilLabel(m_content);
        QPalette palette = label->palette();
        palette.setColor(QPalette::WindowText, scheme->popUpTextColor());
        label->setPalette(palette);
        label->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
        label->setBaseFont(scaledFont(label->font(), kTipFontPx, 1.0));
        label->setWordWrap(true);
        label->setMaximumLines(3);  // what the fixed height holds; a longer caption ends in "…"
    }
    m_nextButton = new VextilButton(m_content);
    m_nextButton->setText(VextilTexts::tr("OK, I got it"));
    m_nextButton->setAccessibleName(m_nextButton->text());
    m_nextButton->setTitleColor(scheme->popUpButtonTintColorForState(kVextilHighlighted));
    QFont font = scaledFont(m_nextButton->font(), kButtonFontPx, 1.0);
    font.setWeight(QFont::Bold);
    m_nextButton->setFont(font);
    m_nextButton->setBackgroundColor(scheme->popUpButtonBackgroundColorForState(kVextilHighlighted));
    m_nextButton->setCornerRadius(5);
    // The pop-up starts to close as the finger lands.
    connect(m_nextButton, &QAbstractButton::pressed, this, &VextilTutorialView::didTappedNextButton);
}

double VextilTutorialView::boxScale() const
{
    // The box is drawn for a phone held upright; in a shorter or narrower screen (a phone on its
    // side) it shrinks, text included, to fit the screen's portrait region with a margin.
    const QSizeF room = VextilPortraitRegion::of(size()).size() - QSizeF(2 * kMargin, 2 * kMargin);
    return std::clamp(std::min(room.width() / kBoxWidth, room.height() / kBoxHeight), 0.1, 1.0);
}

void VextilTutorialView::updateConstraints()
{
    const double k = boxScale();
    const QRectF screen = rect();
    m_content->setGeometry(VextilFrame().centerX(screen.center().x()).centerY(screen.center().y()).width(kBoxWidth * k).height(kBoxHeight * k).pixels());
    const QRectF box(0, 0, kBoxWidth * k, kBoxHeight * k);
    m_nextButton->setGeometry(VextilFrame().centerX(box.center().x()).bottom(box.bottom() - 20 * k).height(44 * k).width(box.width() * 0.8).pixels());
    scaleFonts(k);

    const double side = box.width() * 0.35;
    const QRectF topLeft = VextilFrame().width(side).height(side).left(box.left() + 30 * k).top(box.top() + 40 * k).rect();
    const QRectF topLeftLabel = VextilFrame().centerX(topLeft.center().x()).top(topLeft.bottom()).width(side * 1.1).height(side * 1.1 * kLabelAspect).rect();
    const QRectF topRight = VextilFrame().width(side).height(side).centerY(topLeft.center().y()).right(box.right() - 30 * k).rect();
    const QRectF topRightLabel = VextilFrame().centerX(topRight.center().x()).width(side * 1.1).top(topLeftLabel.top()).height(side * 1.1 * kLabelAspect).rect();
    const QRectF bottomLeft = VextilFrame().width(side).height(side).centerX(topLeft.center().x()).top(topLeftLabel.bottom() + 20 * k).rect();
    // The bottom-right icon alone is not square: its height is its image's own.
    const double ownHeight = m_icons[3]->sizeHint().height() * k;
    const QRectF bottomRight = VextilFrame().width(side).height(ownHeight).centerX(topRight.center().x()).centerY(bottomLeft.center().y()).rect();
    const QRectF bottomLeftLabel = VextilFrame().centerX(bottomLeft.center().x()).top(bottomLeft.bottom()).width(side).height(side * kLabelAspect).rect();
    const QRectF bottomRightLabel = VextilFrame().centerX(bottomRight.center().x()).top(bottomLeftLabel.top()).width(side).height(side * kLabelAspect).rect();

    const QRectF icons[4] = {topLeft, topRight, bottomLeft, bottomRight};
    const QRectF labels[4] = {topLeftLabel, topRightLabel, bottomLeftLabel, bottomRightLabel};
    for (int i = 0; i < 4; ++i) {
        m_icons[i]->setGeometry(icons[i].toRect());
        m_labels[i]->setGeometry(labels[i].toRect());
    }
}

QFont VextilTutorialView::scaledFont(QFont font, int pixels, double scale)
{
    font.setPixelSize(std::max(1, int(std::lround(pixels * scale))));
    return font;
}

void VextilTutorialView::scaleFonts(double scale)
{
    for (VextilLabel *label : m_labels)
        label->setBaseFont(scaledFont(label->font(), kTipFontPx, scale));
    m_nextButton->setFont(scaledFont(m_nextButton->font(), kButtonFontPx, scale));
}

void VextilTutorialView::resizeEvent(QResizeEvent *)
{
    if (m_blur) {
        m_blur->setGeometry(rect());
        static_cast<BlurBackdrop *>(m_blur)->capture();
    }
    updateConstraints();
}

void VextilTutorialView::showEvent(QShowEvent *)
{
    // Once what lies beneath has been laid out and shown too.
    QTimer::singleShot(0, this, [this] {
        if (m_blur)
            static_cast<BlurBackdrop *>(m_blur)->capture();
    });
}

void VextilTutorialView::paintEvent(QPaintEvent *)
{
    if (m_reduceTransparency)
        QPainter(this).fillRect(rect(), Qt::black);
}

qreal VextilTutorialView::alpha() const
{
    auto *opacity = qobject_cast<QGraphicsOpacityEffect *>(graphicsEffect());
    return opacity ? opacity->opacity() : 1.0;
}

VextilTutorialView::~VextilTutorialView()
{
    // The fades die with this view; their ends must not call into it while it is half gone.
    for (QPropertyAnimation *fade : {m_fadeIn.data(), m_fadeOut.data()})
        if (fade)
            disconnect(fade, nullptr, this, nullptr);
}

void VextilTutorialView::fadeIn(int durationMs)
{
    const qreal shown = alpha();  // 0.75 with reduced transparency
    auto *opacity = new QGraphicsOpacityEffect(this);
    opacity->setOpacity(0);
    setGraphicsEffect(opacity);
    show();
    raise();
    m_nextButton->setFocus(Qt::OtherFocusReason);  // a keyboard user answers it with the space bar
    m_fadeIn = new QPropertyAnimation(opacity, "opacity", this);
    m_fadeIn->setDuration(durationMs);
    m_fadeIn->setEndValue(shown);
    connect(m_fadeIn, &QPropertyAnimation::finished, this, [this, shown] {
        if (shown >= 1.0 && !m_closing)
            setGraphicsEffect(nullptr);  // fully shown: draw without the effect
    });
    m_fadeIn->start(QAbstractAnimation::DeleteWhenStopped);
}

void VextilTutorialView::didTappedNextButton()
{
    if (std::exchange(m_closing, true))
        return;
    if (m_fadeIn)
        m_fadeIn->stop();  // a fade-in still running gives way; the fade-out starts where it was
    auto *opacity = qobject_cast<QGraphicsOpacityEffect *>(graphicsEffect());
    if (!opacity) {
        opacity = new QGraphicsOpacityEffect(this);
        opacity->setOpacity(1.0);
        setGraphicsEffect(opacity);
    }
    m_fadeOut = new QPropertyAnimation(opacity, "opacity", this);
    m_fadeOut->setDuration(kFadeMs);
    m_fadeOut->setEndValue(0.0);
    // However the fade ends (finished, stopped, or its effect gone), the animation is deleted:
    // that is when the pop-up goes.
    connect(m_fadeOut, &QObject::destroyed, this, &VextilTutorialView::finishClosing);
    m_fadeOut->start(QAbstractAnimation::DeleteWhenStopped);
}

void VextilTutorialView::finishClosing()
{
    if (std::exchange(m_closed, true))
        return;
    // Hand the focus to the screen beneath first: hidden with it, Qt would pass it along the
    // window's focus chain (to covered controls, the host's own) and a screen reader would speak
    // each. That screen gives it to its own control in the completion handler.
    VextilFocusTrap::setScope(this, false);
    if (QWidget *focus = QApplication::focusWidget(); focus && isAncestorOf(focus) && parentWidget())
        parentWidget()->setFocus(Qt::OtherFocusReason);
    hide();
    setParent(nullptr);  // leaves the screen it covered
    if (m_completionHandler)
        m_completionHandler();
    deleteLater();
}
