#include "quick/VextilQuickFlow.h"

#include <VextilToolkit/VextilError.h>

#include "core/VextilFlowLatch.h"
#include "core/VextilMainQueue.h"
#include "core/VextilPortraitLock.h"
#include "upload/VextilFaceUpload.h"

#include <QPointer>

namespace {
QVariantMap errorMap(const VextilError &error)
{
    return {{QStringLiteral("domain"), error.domain},
            {QStringLiteral("code"), error.code},
            {QStringLiteral("description"), error.description},
            {QStringLiteral("recoverySuggestion"), error.recoverySuggestion}};
}
}  // namespace

VextilQuickFlow::VextilQuickFlow(QObject *parent) : QObject(parent), m_latch(std::make_unique<VextilFlowLatch>()) {}

VextilQuickFlow::~VextilQuickFlow()
{
    if (m_stage != Idle)
        VextilPortraitLock::release();
}

void VextilQuickFlow::setStage(Stage stage)
{
    if (stage == m_stage)
        return;
    // A phone is held upright while any of the flow's screens shows.
    if (m_stage == Idle)
        VextilPortraitLock::acquire();
    else if (stage == Idle)
        VextilPortraitLock::release();
    m_stage = stage;
    Q_EMIT stageChanged();
}

void VextilQuickFlow::requestFace()
{
    if (m_stage != Idle)
        return;  // the open flow goes on; its report answers this request too
    m_latch->open();
    setStage(Camera);
}

void VextilQuickFlow::captureFinished(bool success)
{
    if (m_stage != Camera || !m_latch->isOpen())
        return;
    if (success)
        setStage(Review);
    else
        close(false);
}

void VextilQuickFlow::reviewFinished(bool accepted)
{
    if (m_stage != Review || !m_latch->isOpen())
        return;
    if (accepted)
        close(true);
    else
        setStage(Camera);  // the camera screen starts over as the review leaves
}

void VextilQuickFlow::close(bool success)
{
    m_latch->close(success, success ? std::nullopt
                                    : std::optional(VextilError::createVextilSDKErrorWithCode(VextilErrorCodeCaptureFailed)));
    setStage(Closing);
}

void VextilQuickFlow::screensClosed()
{
    const std::optional<VextilFlowLatch::Outcome> outcome = m_latch->take();
    if (!outcome)
        return;
    setStage(Idle);  // first: the host may start the next flow from its handler
    Q_EMIT finished(outcome->success, outcome->error ? errorMap(*outcome->error) : QVariantMap());
}

void VextilQuickFlow::sendFaceData()
{
    ++m_sending;
    Q_EMIT sendingChanged();
    // The answer may come on the upload's thread; QML hears it on the GUI thread.
    QPointer<VextilQuickFlow> self(this);
    VextilFaceUpload::send([self](std::optional<QVariantMap> answer, std::optional<VextilError> error) {
        VextilMainQueue::dispatchAsync(self, [self, answer = std::move(answer), error = std::move(error)] {
            --self->m_sending;
            Q_EMIT self->sendingChanged();
            if (error)
                Q_EMIT self->sendFailed(errorMap(*error));
            else
                Q_EMIT self->sent(answer.value_or(QVariantMap()));
        });
    });
}
