#include "quick/VextilQuickCaptureSession.h"

#include <VextilToolkit/VextilCameraAuthorization.h>
#include <VextilToolkit/VextilToolkitSettings.h>
#include <VextilToolkit/VextilVideoFileSource.h>

#include "capture/VextilCaptureSession.h"
#include "capture/VextilCaptureStatus.h"

#include <algorithm>
#include <numeric>

VextilQuickCaptureSession::VextilQuickCaptureSession(QObject *parent)
    : QObject(parent), m_session(new VextilCaptureSession(this)), m_status(new VextilCaptureStatus(this))
{
    m_session->setStayingCheck([this] { return !m_leaving; });
    connectSession();
}

// The session stops the camera and drains the frame path before anything else goes.
VextilQuickCaptureSession::~VextilQuickCaptureSession() { delete m_session; }

void VextilQuickCaptureSession::connectSession()
{
    connect(m_session, &VextilCaptureSession::instructionChanged, this, [this](const QString &text) {
        m_status->setInstruction(text);
        Q_EMIT instructionChanged();
    });
    connect(m_session, &VextilCaptureSession::progressChanged, this, [this](double progress) {
        m_status->setProgress(progress);
        Q_EMIT progressChanged();
    });
    connect(m_session, &VextilCaptureSession::progressBarHiddenChanged, this, [this](bool hidden) {
        m_status->setProgressShown(!hidden);
        Q_EMIT progressShownChanged();
    });
    connect(m_session, &VextilCaptureSession::smilePromptChanged, this, [this](bool shown) {
        m_status->setSmilePrompt(shown);
        Q_EMIT smilePromptChanged();
    });
    connect(m_session, &VextilCaptureSession::maskStateChanged, this, [this](bool found) {
        m_faceFound = found;
        Q_EMIT faceFoundChanged();
    });
    connect(m_session, &VextilCaptureSession::frameReady, this, [this](const QImage &frame) {
        m_frame = frame;
        Q_EMIT frameChanged();
    });
    connect(m_status, &VextilCaptureStatus::settled, this, [this](const QString &text) {
        if (std::exchange(m_spoken, text) != text)
            Q_EMIT statusChanged();
    });
    connect(m_session, &VextilCaptureSession::permissionDenied, this, &VextilQuickCaptureSession::permissionDenied);
    connect(m_session, &VextilCaptureSession::permissionGranted, this, &VextilQuickCaptureSession::permissionGranted);
    connect(m_session, &VextilCaptureSession::finished, this, &VextilQuickCaptureSession::finished);
}

void VextilQuickCaptureSession::setVideoFile(const QString &file)
{
    if (file == m_videoFile)
        return;
    m_videoFile = file;
    Q_EMIT videoFileChanged();
}

void VextilQuickCaptureSession::load()
{
    if (!m_videoFile.isEmpty())
        m_session->setFrameSource(std::make_unique<VextilVideoFileSource>(m_videoFile, true));
    m_session->load();
    m_status->setInstruction(m_session->instruction());
    m_spoken = m_status->text();
    Q_EMIT instructionChanged();
    Q_EMIT statusChanged();
}

void VextilQuickCaptureSession::appear() { m_session->appear(); }

void VextilQuickCaptureSession::setViewSize(double width, double height, double devicePixelRatio)
{
    m_session->setViewSize(QSizeF(width, height), devicePixelRatio > 0 ? devicePixelRatio : 1.0);
}

void VextilQuickCaptureSession::finish(bool success) { m_session->finish(success); }

void VextilQuickCaptureSession::openSettings() { VextilCameraAuthorization::openSettings(); }

QString VextilQuickCaptureSession::instruction() const { return m_status->instruction(); }
double VextilQuickCaptureSession::progress() const { return m_status->progress(); }
bool VextilQuickCaptureSession::progressShown() const { return m_status->isProgressShown(); }
bool VextilQuickCaptureSession::smilePrompt() const { return m_status->isSmilePrompt(); }
bool VextilQuickCaptureSession::tutorialShown() const { return m_session->isTutorialShown(); }
bool VextilQuickCaptureSession::mirrored() const { return VextilToolkitSettings::sharedInstance()->mirrorsPreview(); }

void VextilQuickCaptureSession::setTutorialShown(bool shown)
{
    if (shown == m_session->isTutorialShown())
        return;
    m_session->setTutorialShown(shown);
    Q_EMIT tutorialShownChanged();
}

void VextilQuickCaptureSession::setShown(bool shown)
{
    if (shown == m_shown)
        return;
    m_shown = shown;
    m_session->setShown(shown);
    Q_EMIT shownChanged();
}

QVariantMap VextilQuickCaptureSession::stats() const
{
    const VextilCaptureStats stats = m_session->captureStats();
    const auto sorted = [](QList<double> values) {
        std::sort(values.begin(), values.end());
        return values;
    };
    const auto share = [](const QList<double> &values, double at) {
        return values.isEmpty() ? 0.0 : values[qsizetype(double(values.size() - 1) * at)];
    };
    const QList<double> times = sorted(stats.analysisMs), delays = sorted(stats.instructionDelayMs);
    const double total = std::accumulate(times.begin(), times.end(), 0.0);
    return {{QStringLiteral("delivered"), stats.delivered},
            {QStringLiteral("analysed"), stats.analysed},
            {QStringLiteral("dropped"), stats.dropped},
            {QStringLiteral("meanAnalysisMs"), times.isEmpty() ? 0.0 : total / double(times.size())},
            {QStringLiteral("p95AnalysisMs"), share(times, 0.95)},
            {QStringLiteral("instructionChanges"), int(delays.size())},
            {QStringLiteral("p50InstructionDelayMs"), share(delays, 0.5)},
            {QStringLiteral("p95InstructionDelayMs"), share(delays, 0.95)}};
}

void VextilQuickCaptureSession::instructionPainted() { m_session->instructionPainted(); }

double VextilQuickCaptureSession::secondsToCompletion() const { return m_session->secondsToCompletion().value_or(-1.0); }
