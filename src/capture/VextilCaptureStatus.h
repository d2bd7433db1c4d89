#pragma once

#include <VextilToolkit/VextilToolkitExport.h>

#include <QObject>
#include <QString>
#include <QTimer>

/// The camera screen's status as a screen reader hears it: the parts the screen shows, and the
/// sentence they make (VextilCaptureStatusText). One frame's changes (a new instruction and a
/// new photo, say) come as separate calls; the sentence is announced once they have all landed.
/// Shared by both faces; GUI thread. Exported for the Qt Quick module; not part of the API.
class VEXTIL_EXPORT VextilCaptureStatus : public QObject {
    Q_OBJECT
public:
    /// How long the status waits for the rest of a change before it is said.
    static constexpr int kSettlesMs = 40;

    explicit VextilCaptureStatus(QObject *parent = nullptr);

    void setInstruction(const QString &instruction);
    void setProgress(double progress);
    void setProgressShown(bool shown);
    void setSmilePrompt(bool shown);
    QString instruction() const { return m_instruction; }
    double progress() const { return m_progress; }
    bool isProgressShown() const { return m_progressShown; }
    bool isSmilePrompt() const { return m_smile; }
    /// The whole sentence for the current parts.
    QString text() const;

Q_SIGNALS:
    /// A change has landed: the sentence to announce.
    void settled(const QString &text);

private:
    void changed();

    QString m_instruction;
    double m_progress = 0;
    bool m_progressShown = true;
    bool m_smile = false;
    QTimer m_settles;
};
