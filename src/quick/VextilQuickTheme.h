#pragma once

#include <QColor>
#include <QObject>
#include <QtQml/qqmlregistration.h>

/// The colours of the host's colour scheme (VextilToolkitSettings) for QML (Theme, a
/// singleton), read again at every refresh(): FaceCapture refreshes it as each flow starts.
class VextilQuickTheme : public QObject {
    Q_OBJECT
    QML_NAMED_ELEMENT(Theme)
    QML_SINGLETON
    Q_PROPERTY(QColor background READ background NOTIFY schemeChanged)
    Q_PROPERTY(QColor buttonBackground READ buttonBackground NOTIFY schemeChanged)
    Q_PROPERTY(QColor buttonTint READ buttonTint NOTIFY schemeChanged)
    Q_PROPERTY(QColor cancelButtonBackground READ cancelButtonBackground NOTIFY schemeChanged)
    Q_PROPERTY(QColor cancelButtonTint READ cancelButtonTint NOTIFY schemeChanged)
    Q_PROPERTY(QColor navigationTitle READ navigationTitle NOTIFY schemeChanged)
    Q_PROPERTY(QColor backButton READ backButton NOTIFY schemeChanged)
    Q_PROPERTY(QColor popUpBackground READ popUpBackground NOTIFY schemeChanged)
    Q_PROPERTY(QColor popUpText READ popUpText NOTIFY schemeChanged)
    Q_PROPERTY(QColor popUpButtonTint READ popUpButtonTint NOTIFY schemeChanged)
    Q_PROPERTY(QColor popUpButtonBackground READ popUpButtonBackground NOTIFY schemeChanged)
    Q_PROPERTY(QColor popUpIcon READ popUpIcon NOTIFY schemeChanged)
    Q_PROPERTY(QColor confirmQuestionText READ confirmQuestionText NOTIFY schemeChanged)
    /// The camera screen's fixed colours: progress track and fill, the smile pop-up's text and box.
    Q_PROPERTY(QColor progressTrack READ progressTrack CONSTANT)
    Q_PROPERTY(QColor progressFill READ progressFill CONSTANT)
    Q_PROPERTY(QColor smileText READ smileText CONSTANT)
    Q_PROPERTY(QColor smileBackground READ smileBackground CONSTANT)
    /// The user asked for less transparency: the tutorial covers the screen with black at 75%.
    Q_PROPERTY(bool reduceTransparency READ reduceTransparency NOTIFY schemeChanged)
public:
    explicit VextilQuickTheme(QObject *parent = nullptr) : QObject(parent) {}

    QColor background() const;
    QColor buttonBackground() const;
    QColor buttonTint() const;
    QColor cancelButtonBackground() const;
    QColor cancelButtonTint() const;
    QColor navigationTitle() const;
    QColor backButton() const;
    QColor popUpBackground() const;
    QColor popUpText() const;
    QColor popUpButtonTint() const;
    QColor popUpButtonBackground() const;
    QColor popUpIcon() const;
    QColor confirmQuestionText() const;
    bool reduceTransparency() const;
    QColor progressTrack() const;
    QColor progressFill() const;
    QColor smileText() const;
    QColor smileBackground() const;

    /// Reads the scheme again.
    Q_INVOKABLE void refresh() { Q_EMIT schemeChanged(); }

Q_SIGNALS:
    void schemeChanged();
};
