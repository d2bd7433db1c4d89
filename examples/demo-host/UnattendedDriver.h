#pragma once

#include <VextilToolkit/VextilCaptureStats.h>

#include "DemoWindow.h"

#include <QElapsedTimer>
#include <QObject>
#include <QSet>
#include <QTimer>

#include <optional>

// Plays the user: takes a selfie, dismisses the tutorial, accepts the review and sends,
// saving a screenshot of each screen as it goes, then prints the run's figures and quits.
class UnattendedDriver : public QObject {
    Q_OBJECT
public:
    UnattendedDriver(DemoWindow *window, QString screenshots, QObject *parent = nullptr);
    void start();

private:
    void poll();
    void shoot(const QString &name, QWidget *widget);
    void finish(int code);
    void printFigures(bool sent, qint64 uploadMs);

    DemoWindow *m_window;
    QString m_screenshots;
    QTimer m_poll;
    QSet<QString> m_done;
    QElapsedTimer m_sinceStart, m_upload;
    VextilCaptureStats m_stats;
    std::optional<double> m_secondsToCompletion, m_idleMiB;
};
