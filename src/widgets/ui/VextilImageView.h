#pragma once

#include <QColor>
#include <QImage>
#include <QWidget>

/// Shows one of the toolkit's images, redrawn crisply at whatever size and density it gets.
class VextilImageView : public QWidget {
    Q_OBJECT
public:
    enum class ContentMode { ScaleAspectFit, ScaleAspectFill };

    explicit VextilImageView(const QString &imageName = {}, QWidget *parent = nullptr);

    /// The image's resource name ("borda_branca", …); an unknown name shows nothing.
    QString imageName() const { return m_name; }
    void setImageName(const QString &name);
    /// How the image fits the view's rectangle.
    ContentMode contentMode() const { return m_mode; }
    void setContentMode(ContentMode mode);
    /// A valid tint draws the image as a template in that colour.
    QColor tintColor() const { return m_tint; }
    void setTintColor(const QColor &tint);
    /// The image's natural size.
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *) override;

private:
    QString m_name;
    ContentMode m_mode = ContentMode::ScaleAspectFit;
    QColor m_tint;
    QImage m_cache;  // rendered for the last size, density and tint
};
