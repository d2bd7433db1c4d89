#include "DemoWindow.h"

#include <VextilToolkit/VextilFace.h>

#include <QJsonDocument>
#include <QJsonObject>
#include <QVBoxLayout>

DemoWindow::DemoWindow(QWidget *parent) : QWidget(parent)
{
    setWindowTitle(QStringLiteral("VextilToolkit demo host"));
    auto *layout = new QVBoxLayout(this);
    auto *title = new QLabel(QStringLiteral("<h2>Demo host</h2><p>Take a selfie, then send it for verification.</p>"));
    title->setWordWrap(true);
    m_take = new QPushButton(QStringLiteral("Take selfie"));
    m_send = new QPushButton(QStringLiteral("Send"));
    m_send->setEnabled(false);
    m_result = new QLabel(QStringLiteral("No selfie yet."));
    m_result->setWordWrap(true);
    m_result->setTextInteractionFlags(Qt::TextSelectableByMouse);
    for (QWidget *w : {static_cast<QWidget *>(title), static_cast<QWidget *>(m_take), static_cast<QWidget *>(m_send),
                       static_cast<QWidget *>(m_result)})
        layout->addWidget(w);
    layout->addStretch();
    connect(m_take, &QPushButton::clicked, this, &DemoWindow::takeSelfie);
    connect(m_send, &QPushButton::clicked, this, &DemoWindow::send);
}

void DemoWindow::showError(const QString &what, const VextilError &error)
{
    m_result->setText(QStringLiteral("%1 failed: error %2 (%3)\n%4\n%5")
                          .arg(what).arg(error.code).arg(error.domain, error.description, error.recoverySuggestion));
}

void DemoWindow::takeSelfie()
{
    VextilFace::sharedInstance()->setRootController(window());
    VextilFace::sharedInstance()->requestFace([this](bool success, std::optional<VextilError> error) {
        if (success)
            m_result->setText(QStringLiteral("Selfie taken: 5 neutral and 2 smiling images are ready to send."));
        else if (error)
            showError(QStringLiteral("The selfie"), *error);
        m_send->setEnabled(success);
        Q_EMIT captureEnded(success);
    });
}

void DemoWindow::send()
{
    m_send->setEnabled(false);
    m_result->setText(QStringLiteral("Sending…"));
    VextilFace::sharedInstance()->sendFaceDataWithCallback([this](std::optional<QVariantMap> answer, std::optional<VextilError> error) {
        // The answer comes on the upload's thread; the window changes on its own.
        QMetaObject::invokeMethod(this, [this, answer, error] {
            if (error) {
                showError(QStringLiteral("The upload"), *error);
                m_send->setEnabled(true);  // the images are kept for a retry
            } else {
                const QJsonObject json = answer ? QJsonObject::fromVariantMap(*answer) : QJsonObject();
                m_result->setText(QStringLiteral("Sent. The service answered:\n") +
                                  QString::fromUtf8(QJsonDocument(json).toJson(QJsonDocument::Indented)));
            }
            Q_EMIT sendEnded(!error);
        });
    });
}
