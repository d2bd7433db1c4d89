#pragma once

#include "DemoFigures.h"

#include <QElapsedTimer>
#include <QObject>
#include <QPointer>
#include <QQuickWindow>
#include <QSet>
#include <QTimer>

// Plays the user of the QML demo host as UnattendedDriver does the Widgets one: takes a selfie,
// dismisses the tutorial, accepts the review and sends, saving a screenshot of each screen, then
// prints the run's figures and quits. It finds buttons by their titles, as a user does.
class QuickDriver : public QObject {
    Q_OBJECT
public:
    QuickDriver(QQuickWindow *window, QString screenshots, QObject *parent = nullptr);
    void start();

private Q_SLOTS:
    void captureEnded(bool success);
    void sendEnded(bool sent);

private:
    void poll();
    bool once(const QString &step);
    bool press(const QString &title);
    QObject *session() const;
    void shoot(const QString &name);
    void finish(int code);

    QPointer<QQuickWindow> m_window;
    QObject *m_capture = nullptr;
    QString m_screenshots;
    QTimer m_poll;
    QSet<QString> m_done;
    QElapsedTimer m_sinceStart, m_upload;
    DemoFigures m_figures;
};
