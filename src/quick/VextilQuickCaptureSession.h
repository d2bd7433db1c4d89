#pragma once

#include <QImage>
#include <QObject>
#include <QSizeF>
#include <QtQml/qqmlregistration.h>

class VextilCaptureSession;
class VextilCaptureStatus;

/// The camera screen's decisions for QML (CaptureSession): the shared session, and the status a
/// screen reader hears. The screen loads it, tells it when it shows, hides, is covered by the
/// tutorial or resized, and binds to what it says.
class VextilQuickCaptureSession : public QObject {
    Q_OBJECT
    QML_NAMED_ELEMENT(CaptureSession)
    /// A video file standing in for the camera; set before load(). Empty: the settings' camera.
    Q_PROPERTY(QString videoFile READ videoFile WRITE setVideoFile NOTIFY videoFileChanged)
    Q_PROPERTY(QString instruction READ instruction NOTIFY instructionChanged)
    /// The whole status as one sentence, announced once a change has landed.
    Q_PROPERTY(QString status READ status NOTIFY statusChanged)
    Q_PROPERTY(double progress READ progress NOTIFY progressChanged)
    Q_PROPERTY(bool progressShown READ progressShown NOTIFY progressShownChanged)
    Q_PROPERTY(bool faceFound READ faceFound NOTIFY faceFoundChanged)
    Q_PROPERTY(bool smilePrompt READ smilePrompt NOTIFY smilePromptChanged)
    Q_PROPERTY(bool tutorialShown READ tutorialShown WRITE setTutorialShown NOTIFY tutorialShownChanged)
    Q_PROPERTY(bool shown READ shown WRITE setShown NOTIFY shownChanged)
    /// Whether the screen is going away for good (no camera start then).
    Q_PROPERTY(bool leaving MEMBER m_leaving NOTIFY leavingChanged)
    Q_PROPERTY(bool mirrored READ mirrored CONSTANT)
    /// Frames delivered, analysed and dropped, the mean and 95th percentile analysis times in ms,
    /// and the instructions' felt delay: instructionChanges, p50InstructionDelayMs, p95InstructionDelayMs.
    Q_PROPERTY(QVariantMap stats READ stats)
    /// Seconds from the first neutral image to completion; negative until known.
    Q_PROPERTY(double secondsToCompletion READ secondsToCompletion)
public:
    explicit VextilQuickCaptureSession(QObject *parent = nullptr);
    ~VextilQuickCaptureSession() override;

    QString videoFile() const { return m_videoFile; }
    void setVideoFile(const QString &file);
    QString instruction() const;
    QString status() const { return m_spoken; }
    double progress() const;
    bool progressShown() const;
    bool faceFound() const { return m_faceFound; }
    bool smilePrompt() const;
    bool tutorialShown() const;
    void setTutorialShown(bool shown);
    bool shown() const { return m_shown; }
    void setShown(bool shown);
    bool mirrored() const;
    QVariantMap stats() const;
    double secondsToCompletion() const;
    QImage frame() const { return m_frame; }

    /// The screen has loaded: camera, capture queue, model.
    Q_INVOKABLE void load();
    /// The screen is about to appear (first time, or again after a retake).
    Q_INVOKABLE void appear();
    /// The camera view's size in item units, and the window's device pixel ratio.
    Q_INVOKABLE void setViewSize(double width, double height, double devicePixelRatio);
    /// Ends the capture: failed (the back button, the permission alert's Cancel) or done.
    Q_INVOKABLE void finish(bool success);
    /// Opens the system's privacy settings (the permission alert's Settings).
    Q_INVOKABLE void openSettings();
    /// The window showed a new frame: a new instruction has reached the screen.
    Q_INVOKABLE void instructionPainted();

Q_SIGNALS:
    void videoFileChanged();
    void instructionChanged();
    void statusChanged();
    void progressChanged();
    void progressShownChanged();
    void faceFoundChanged();
    void smilePromptChanged();
    void tutorialShownChanged();
    void shownChanged();
    void leavingChanged();
    void frameChanged();
    void permissionDenied();
    /// Access was granted after it had been refused: the alert closes itself.
    void permissionGranted();
    void finished(bool success);

private:
    void connectSession();

    VextilCaptureSession *m_session;
    VextilCaptureStatus *m_status;
    QString m_videoFile;
    QString m_spoken;
    QImage m_frame;
    bool m_shown = false;
    bool m_faceFound = false;
    bool m_leaving = false;
};
