#pragma once

#include <QColor>
#include <QQuickPaintedItem>
#include <QtQml/qqmlregistration.h>

/// One of the toolkit's own pictures (Artwork), drawn sharp at any size; with a tint colour it
/// is drawn as a template (only its shape counts), as the Widgets screens draw icons.
class VextilQuickArtwork : public QQuickPaintedItem {
    Q_OBJECT
    QML_NAMED_ELEMENT(Artwork)
    Q_PROPERTY(QString name READ name WRITE setName NOTIFY nameChanged)
    Q_PROPERTY(QColor tint READ tint WRITE setTint NOTIFY tintChanged)
    /// How the picture fills the item: fit (whole, centred) or fill (covering, cropped).
    Q_PROPERTY(bool fill READ fill WRITE setFill NOTIFY fillChanged)
public:
    explicit VextilQuickArtwork(QQuickItem *parent = nullptr);

    QString name() const { return m_name; }
    void setName(const QString &name);
    QColor tint() const { return m_tint; }
    void setTint(const QColor &tint);
    bool fill() const { return m_fill; }
    void setFill(bool fill);
    void paint(QPainter *painter) override;

Q_SIGNALS:
    void nameChanged();
    void tintChanged();
    void fillChanged();

private:
    QString m_name;
    QColor m_tint;
    bool m_fill = false;
};
