#pragma once

#include <VextilToolkit/VextilFaceCameraModelDelegate.h>

#include <QMutex>
#include <QObject>
#include <QStringList>

// Records every call the face capture model makes, in order, from any thread.
class RecordingDelegate : public QObject, public VextilFaceCameraModelDelegate {
    Q_OBJECT
public:
    void finishedCapture() override;
    void updateMessageText(const QString &text) override;
    void updateProgressView(double progress) override;
    void isProgressBarHidden(bool hidden) override;
    void changeMaskState() override;
    void isPopupViewHidden(bool hidden) override;

    // Calls so far, e.g. "message:Looking for face", "progress:0.2", "mask", "finished".
    QStringList calls() const;
    int count(const QString &call) const;
    // The messages shown so far, in order.
    QStringList texts() const;
    void clear();

private:
    void record(const QString &call);
    mutable QMutex m_mutex;
    QStringList m_calls;
};
