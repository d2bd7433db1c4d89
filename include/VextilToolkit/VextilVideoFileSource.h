#pragma once

#include <VextilToolkit/VextilFrameSource.h>

#include <atomic>
#include <thread>

/// A video file standing in for the camera: its frames, converted as camera frames are, at the
/// file's own frame rate, optionally looping.
class VEXTIL_EXPORT VextilVideoFileSource : public VextilFrameSource {
public:
    VextilVideoFileSource(QString path, bool loop = false);
    ~VextilVideoFileSource() override;

    void start() override;
    void stop() override;
    bool isRunning() const override { return m_running; }
    QString description() const override { return QStringLiteral("video file: ") + m_path; }
    bool isAvailable() const override;

private:
    void play();
    QString m_path;
    bool m_loop;
    std::atomic<bool> m_running{false};
    std::thread m_thread;
};
