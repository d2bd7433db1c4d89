#pragma once

#include <QAbstractButton>
#include <QColor>
#include <QMarginsF>

/// A button laid out the way the toolkit's screens expect: an optional template image tinted
/// with tintColor, an optional title, a background with rounded corners, and edge insets for
/// the content, the image and the title. Owners act on pressed(), as the finger lands.
class VextilButton : public QAbstractButton {
    Q_OBJECT
public:
    explicit VextilButton(QWidget *parent = nullptr);

    /// Resource name of the image, drawn as a template in tintColor.
    void setImageName(const QString &name);
    QString imageName() const { return m_imageName; }
    void setTintColor(const QColor &color);
    QColor tintColor() const { return m_tint; }
    void setTitleColor(const QColor &color);
    QColor titleColor() const { return m_titleColor; }
    void setBackgroundColor(const QColor &color);
    QColor backgroundColor() const { return m_background; }
    void setCornerRadius(qreal radius);
    qreal cornerRadius() const { return m_radius; }
    /// Space between the edges and the image-and-title pair.
    void setContentEdgeInsets(const QMarginsF &insets);
    QMarginsF contentEdgeInsets() const { return m_contentInsets; }
    /// Moves the image; negative insets draw it larger than the content area.
    void setImageEdgeInsets(const QMarginsF &insets);
    QMarginsF imageEdgeInsets() const { return m_imageInsets; }
    /// Moves the title.
    void setTitleEdgeInsets(const QMarginsF &insets);
    QMarginsF titleEdgeInsets() const { return m_titleInsets; }

    /// Image and title side by side plus the content insets.
    QSize sizeHint() const override;
    /// Whether the focus ring shows: whenever the button has the keyboard focus.
    bool showsFocusRing() const { return hasFocus(); }

protected:
    void paintEvent(QPaintEvent *) override;

private:
    QSizeF imageSize() const;
    QString m_imageName;
    QColor m_tint = Qt::black, m_titleColor = Qt::black, m_background;
    qreal m_radius = 0;
    QMarginsF m_contentInsets, m_imageInsets, m_titleInsets;
};

/// Separates a button's image and title by `spacing` while the pair stays centred: image
/// insets (0, 0, 0, spacing) and title insets (0, spacing, 0, 0), as top, left, bottom, right.
void centerButtonAndImageWithSpacing(VextilButton *button, qreal spacing);
