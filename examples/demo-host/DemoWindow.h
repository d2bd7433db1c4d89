#pragma once

#include <VextilToolkit/VextilError.h>

#include <QLabel>
#include <QPushButton>
#include <QVariantMap>
#include <QWidget>

#include <optional>

// The host's own screen: two buttons and what came back.
class DemoWindow : public QWidget {
    Q_OBJECT
public:
    explicit DemoWindow(QWidget *parent = nullptr);

    QPushButton *takeSelfieButton() const { return m_take; }
    QPushButton *sendButton() const { return m_send; }
    QString resultText() const { return m_result->text(); }

    // Starts a capture; the result shows when it ends.
    void takeSelfie();
    // Uploads the capture; the answer or the error shows when it comes.
    void send();

Q_SIGNALS:
    void captureEnded(bool success);
    void sendEnded(bool success);

private:
    void showError(const QString &what, const VextilError &error);
    QPushButton *m_take;
    QPushButton *m_send;
    QLabel *m_result;
};
