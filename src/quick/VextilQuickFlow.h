#pragma once

#include <QObject>
#include <QVariantMap>
#include <QtQml/qqmlregistration.h>

#include <memory>

class VextilFlowLatch;

/// The capture flow's steps for QML (FaceFlow), behind the FaceCapture item: one flow at a
/// time, the camera screen, then the review, then one report; and the upload of what the
/// review accepted. The screens tell it what the user did; it says which screen shows.
class VextilQuickFlow : public QObject {
    Q_OBJECT
    QML_NAMED_ELEMENT(FaceFlow)
    Q_PROPERTY(Stage stage READ stage NOTIFY stageChanged)
    /// Sends started and not yet answered.
    Q_PROPERTY(int sending READ sending NOTIFY sendingChanged)
public:
    enum Stage {
        Idle,     ///< no flow
        Camera,   ///< the camera screen shows
        Review,   ///< the review shows over it
        Closing,  ///< the screens are going; the report follows
    };
    Q_ENUM(Stage)

    explicit VextilQuickFlow(QObject *parent = nullptr);
    ~VextilQuickFlow() override;

    Stage stage() const { return m_stage; }
    int sending() const { return m_sending; }

    /// Opens a flow; while one is open (or closing) it goes on, and its one report answers both.
    Q_INVOKABLE void requestFace();
    /// The camera screen ended: captured (the review follows) or failed (the flow closes).
    Q_INVOKABLE void captureFinished(bool success);
    /// The review's answer: accepted (the flow closes) or a retake (back to the camera).
    Q_INVOKABLE void reviewFinished(bool accepted);
    /// The screens have gone: the flow reports.
    Q_INVOKABLE void screensClosed();
    /// Uploads the stored capture; answered by sent or sendFailed, on the GUI thread.
    Q_INVOKABLE void sendFaceData();

Q_SIGNALS:
    void stageChanged();
    void sendingChanged();
    /// Once per flow: success, or the error (domain, code, description, recoverySuggestion).
    void finished(bool success, const QVariantMap &error);
    void sent(const QVariantMap &answer);
    void sendFailed(const QVariantMap &error);

private:
    void setStage(Stage stage);
    void close(bool success);

    std::unique_ptr<VextilFlowLatch> m_latch;
    Stage m_stage = Idle;
    int m_sending = 0;
};
