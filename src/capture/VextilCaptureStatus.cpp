#include "capture/VextilCaptureStatus.h"

#include "capture/VextilCaptureStatusText.h"

VextilCaptureStatus::VextilCaptureStatus(QObject *parent) : QObject(parent)
{
    m_settles.setSingleShot(true);
    m_settles.setInterval(kSettlesMs);
    connect(&m_settles, &QTimer::timeout, this, [this] { Q_EMIT settled(text()); });
}

void VextilCaptureStatus::setInstruction(const QString &instruction)
{
    m_instruction = instruction;
    changed();
}

void VextilCaptureStatus::setProgress(double progress)
{
    m_progress = progress;
    changed();
}

void VextilCaptureStatus::setProgressShown(bool shown)
{
    m_progressShown = shown;
    changed();
}

void VextilCaptureStatus::setSmilePrompt(bool shown)
{
    m_smile = shown;
    changed();
}

QString VextilCaptureStatus::text() const
{
    return VextilCaptureStatusText::compose(m_instruction, m_progress, m_progressShown, m_smile);
}

void VextilCaptureStatus::changed()
{
    if (!m_settles.isActive())
        m_settles.start();
}
