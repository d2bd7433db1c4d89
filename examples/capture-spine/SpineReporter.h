#pragma once

#include <VextilToolkit/VextilFaceCameraModelDelegate.h>

#include <QHash>
#include <QObject>

// Stands where the camera screen will stand: prints every update the face capture model asks
// for, stamped with the clip time of the frame being analysed.
class SpineReporter : public QObject, public VextilFaceCameraModelDelegate {
    Q_OBJECT
public:
    void setClipSeconds(double seconds) { m_seconds = seconds; }
    bool isFinished() const { return m_finished; }

    void finishedCapture() override;
    void updateMessageText(const QString &text) override;
    void updateProgressView(double progress) override;
    void isProgressBarHidden(bool hidden) override;
    void changeMaskState() override;
    void isPopupViewHidden(bool hidden) override;

private:
    // Prints a line unless it repeats what was last said on the same subject.
    void print(const QString &subject, const QString &line);
    QHash<QString, QString> m_lastSaid;
    double m_seconds = 0;
    bool m_finished = false;
    bool m_maskGreen = false;
};
