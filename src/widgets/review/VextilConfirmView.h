#pragma once

#include "review/VextilPhotoAnimation.h"

#include "widgets/ui/VextilButton.h"

#include <QLabel>
#include <QTimer>
#include <QWidget>

#include <memory>
#include <optional>

/// The review screen's content: the photo (or the face images looping once a second) in a
/// rounded border, a question, and the accept and retake buttons. Holds no logic.
class VextilConfirmView : public QWidget {
    Q_OBJECT
public:
    explicit VextilConfirmView(QWidget *parent = nullptr);

    /// Shows the photo and, animated, the face images.
    QWidget *selectImageView() const { return m_imageView; }
    QLabel *messageLabel() const { return m_messageLabel; }
    VextilButton *acceptButton() const { return m_acceptButton; }
    VextilButton *cancelButton() const { return m_cancelButton; }
    /// The border's rectangle around the photo, as of the last layout pass; empty before the first.
    std::optional<QRectF> border() const { return m_border; }

    void setMessageText(const QString &text);
    void setAcceptButtonText(const QString &text);
    void setCancelButtonText(const QString &text);
    /// Shows a still image at once.
    void setDocumentImage(const QImage &image);
    /// Plays the images in a loop, the whole list once a second.
    void setFaceImages(std::shared_ptr<QList<QImage>> images);
    /// The image shown now.
    QImage currentImage() const;
    /// The images being played.
    QList<QImage> animationImages() const { return m_photo.frames(); }

protected:
    void resizeEvent(QResizeEvent *) override;
    void paintEvent(QPaintEvent *) override;

private:
    static constexpr int kMessagePx = 18, kButtonPx = 16, kSmallestPx = 10;
    static constexpr double kIconSpacing = 15.0;
    void setupView();
    void setupConstraints();
    void fitButtonTexts();
    void setupColors();
    void drawMask();

    QWidget *m_imageView = nullptr;
    QLabel *m_messageLabel = nullptr;
    VextilButton *m_acceptButton = nullptr;
    VextilButton *m_cancelButton = nullptr;
    std::optional<QRectF> m_border;
    QColor m_borderColor, m_background;
    VextilPhotoAnimation m_photo;
};
