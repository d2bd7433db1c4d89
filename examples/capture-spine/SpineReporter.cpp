#include "SpineReporter.h"

#include <cstdio>

void SpineReporter::print(const QString &subject, const QString &line)
{
    if (m_lastSaid.value(subject) == line)
        return;
    m_lastSaid.insert(subject, line);
    std::printf("[%5.2f s] %s\n", m_seconds, qPrintable(line));
}

void SpineReporter::finishedCapture()
{
    m_finished = true;
    print(QStringLiteral("finished"), QStringLiteral("capture finished: images handed to the store"));
}

void SpineReporter::updateMessageText(const QString &text) { print(QStringLiteral("message"), QStringLiteral("message    \"%1\"").arg(text)); }

void SpineReporter::updateProgressView(double progress)
{
    print(QStringLiteral("progress"), QStringLiteral("progress   %1%").arg(qRound(progress * 100)));
}

void SpineReporter::isProgressBarHidden(bool hidden)
{
    print(QStringLiteral("bar"), hidden ? QStringLiteral("progress bar hidden") : QStringLiteral("progress bar shown"));
}

void SpineReporter::changeMaskState()
{
    m_maskGreen = !m_maskGreen;
    print(QStringLiteral("mask"), m_maskGreen ? QStringLiteral("face frame turns green") : QStringLiteral("face frame turns white"));
}

void SpineReporter::isPopupViewHidden(bool hidden)
{
    print(QStringLiteral("popup"), hidden ? QStringLiteral("\"SMILE!\" popup hidden") : QStringLiteral("\"SMILE!\" popup shown"));
}
