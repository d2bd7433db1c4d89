#include "widgets/ui/NavigationBarView.h"

#include "core/VextilTexts.h"
#include "widgets/ui/VextilFrame.h"

#include <QCoreApplication>

NavigationBarView::NavigationBarView(const QString &title, bool andHelpButton, QWidget *parent)
    : QWidget(parent), m_navigationTitle(title), m_showHelpButton(andHelpButton)
{
    setupViews();
    setupConstraints();
}

VextilButton *NavigationBarView::makeIconButton(const QString &image, const QString &accessibleName)
{
    auto *button = new VextilButton(this);
    button->setImageName(image);
    // The image is drawn 2 pixels larger on every side than the content area.
    button->setContentEdgeInsets(QMarginsF(2, 2, 2, 2));
    button->setImageEdgeInsets(QMarginsF(-2, -2, -2, -2));
    button->setAccessibleName(accessibleName);
    return button;
}

void NavigationBarView::setupViews()
{
    m_backButton = makeIconButton(backButtonImage(), VextilTexts::tr("Back"));
    m_titleLabel = new VextilLabel(this);
    QFont font = m_titleLabel->font();
    font.setPixelSize(16);
    m_titleLabel->setBaseFont(font);
    m_titleLabel->setAdjustsFontSizeToFitWidth(true);
    m_titleLabel->setMinimumScaleFactor(0.7);
    m_titleLabel->setText(m_navigationTitle);
    if (m_showHelpButton)
        m_helpButton = makeIconButton(helpButtonImage(), VextilTexts::tr("Help"));
}

void NavigationBarView::setupConstraints()
{
    // The title takes its natural width, but never more than the bar, so long titles shrink.
    const QSize titleSize(qMin(QFontMetrics(m_titleLabel->baseFont()).horizontalAdvance(m_navigationTitle) + 2, width()),
                          QFontMetrics(m_titleLabel->baseFont()).height());
    const QRectF title = VextilFrame().size(titleSize).centerX(width() / 2.0).bottom(height() - 10).rect();
    m_titleLabel->setGeometry(title.toRect());
    m_backButton->setGeometry(
        VextilFrame().size(m_backButton->sizeHint()).centerY(title.center().y()).left(10).pixels());
    if (m_helpButton)
        m_helpButton->setGeometry(
            VextilFrame().size(m_helpButton->sizeHint()).right(width() - 10).centerY(title.center().y()).pixels());
}

void NavigationBarView::setTitleLabelTintColor(const QColor &color)
{
    QPalette palette = m_titleLabel->palette();
    palette.setColor(QPalette::WindowText, color);
    m_titleLabel->setPalette(palette);
}

void NavigationBarView::setBackButtonTintColor(const QColor &color) { m_backButton->setTintColor(color); }

void NavigationBarView::setHelpButtonTintColor(const QColor &color)
{
    if (m_helpButton)
        m_helpButton->setTintColor(color);
}
