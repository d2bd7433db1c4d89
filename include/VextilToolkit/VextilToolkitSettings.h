#pragma once

#include <VextilToolkit/VextilColorScheme.h>
#include <VextilToolkit/VextilToolkitExport.h>

#include <QLocale>
#include <QMutex>
#include <QPointer>
#include <QString>
#include <QStringList>
#include <QTranslator>

#include <functional>
#include <memory>
#include <optional>

class VextilFrameSource;

/// The host's configuration: its authentication key and the colour scheme of the review
/// screen and the tutorial. A process-wide singleton; call it from the GUI thread.
class VEXTIL_EXPORT VextilToolkitSettings {
public:
    /// The settings, created on first use (thread-safely) and never destroyed.
    static VextilToolkitSettings *sharedInstance();

    /// Stores the key and hands it to the upload store; always true. Despite its name it
    /// configures the shared instance rather than creating one.
    bool initWithAuthKey(const std::optional<QString> &authKey);
    /// The key given to initWithAuthKey (or setAuthKey); empty until then.
    std::optional<QString> authKey() const;
    /// Stores the key here only: the upload store does not learn it.
    void setAuthKey(const std::optional<QString> &authKey);

    /// Replaces the colours of every screen built afterwards; null is stored as given (screens
    /// then fall back to the default colours).
    void setColorScheme(std::shared_ptr<VextilColorScheme> colorScheme);
    /// The scheme in force: a VextilDefaultColorScheme unless the host set another.
    std::shared_ptr<VextilColorScheme> getColorScheme() const;
    std::shared_ptr<VextilColorScheme> colorScheme() const { return getColorScheme(); }

    /// Whether the camera screen shows its picture mirrored, as a selfie camera's preview is (true
    /// by default). Stored and uploaded images are never mirrored: they show what the other side
    /// sees. Read when a camera screen is built.
    void setMirrorsPreview(bool mirrors);
    bool mirrorsPreview() const;

    /// The camera to film with, named by its description or id (see
    /// VextilFrameSource::cameraNames()); empty (the default), or a camera that is not there: the
    /// toolkit chooses, as the README says. Read when a camera screen opens its camera.
    void setCamera(const QString &camera);
    QString camera() const;

    /// Makes the frame source of every capture opened afterwards, in either face: a host's own
    /// camera pipeline, a harness. Empty (the default): the camera chosen with setCamera.
    using FrameSourceFactory = std::function<std::unique_ptr<VextilFrameSource>()>;
    void setFrameSourceFactory(FrameSourceFactory factory);
    FrameSourceFactory frameSourceFactory() const;

    /// Draws the tutorial without a blur (black at 75% opacity) for users who ask for reduced
    /// transparency. Qt exposes no such system preference, so it is off until the host sets it.
    void setReduceTransparency(bool reduce);
    bool isReduceTransparencyEnabled() const;

    /// Installs the toolkit's own translation of its screens for the locale, replacing one it
    /// installed before: the locale's UI languages are tried in order (pt_BR, then pt), then any
    /// shipped translation of the same language. True when a translation, or English itself, is
    /// in force; false leaves the English texts. Screens built afterwards use it; a translator
    /// the host installs later for the context "VextilToolkit" takes precedence. GUI thread,
    /// after the QCoreApplication exists.
    bool installTranslations(const QLocale &locale);
    /// The locales the toolkit ships a translation for, by name ("de", "es", "pt_BR").
    static QStringList availableTranslations();

private:
    VextilToolkitSettings();
    void removeTranslations();
    QPointer<QTranslator> m_translator;
    mutable QMutex m_mutex;
    std::optional<QString> m_authKey;
    std::shared_ptr<VextilColorScheme> m_colorScheme;
    bool m_reduceTransparency = false;
    bool m_mirrorsPreview = true;
    QString m_camera;
    FrameSourceFactory m_frameSourceFactory;
};
