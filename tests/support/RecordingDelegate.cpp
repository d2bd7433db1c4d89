#include "RecordingDelegate.h"

void RecordingDelegate::finishedCapture() { record(QStringLiteral("finished")); }
void RecordingDelegate::updateMessageText(const QString &text) { record(QStringLiteral("message:") + text); }
void RecordingDelegate::updateProgressView(double progress)
{
    record(QStringLiteral("progress:") + QString::number(progress));
}
void RecordingDelegate::isProgressBarHidden(bool hidden)
{
    record(hidden ? QStringLiteral("bar:hidden") : QStringLiteral("bar:shown"));
}
void RecordingDelegate::changeMaskState() { record(QStringLiteral("mask")); }
void RecordingDelegate::isPopupViewHidden(bool hidden)
{
    record(hidden ? QStringLiteral("popup:hidden") : QStringLiteral("popup:shown"));
}

QStringList RecordingDelegate::calls() const
{
    QMutexLocker lock(&m_mutex);
    return m_calls;
}

int RecordingDelegate::count(const QString &call) const
{
    QMutexLocker lock(&m_mutex);
    return int(m_calls.count(call));
}

void RecordingDelegate::clear()
{
    QMutexLocker lock(&m_mutex);
    m_calls.clear();
}

void RecordingDelegate::record(const QString &call)
{
    QMutexLocker lock(&m_mutex);
    m_calls.append(call);
}

QStringList RecordingDelegate::texts() const
{
    QStringList messages;
    for (const QString &call : calls())
        if (call.startsWith(QStringLiteral("message:")))
            messages.append(call.mid(8));
    return messages;
}
