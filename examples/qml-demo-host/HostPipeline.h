#pragma once

#include <VextilToolkit/VextilFrameSource.h>

#include <atomic>
#include <thread>

// A host's own camera pipeline, as a QML host with native camera bindings would bring one: here
// a video file read on a thread of the host's, at the file's own pace, handed to the toolkit
// frame by frame.
class HostPipeline : public VextilFrameSource {
public:
    explicit HostPipeline(QString clip) : m_clip(std::move(clip)) {}
    ~HostPipeline() override { stop(); }
    void start() override;
    void stop() override;
    bool isRunning() const override { return m_running; }
    QString description() const override { return QStringLiteral("the host's own pipeline over %1").arg(m_clip); }
    bool isAvailable() const override { return true; }

private:
    void run();

    QString m_clip;
    std::atomic<bool> m_running{false};
    std::thread m_thread;
};
