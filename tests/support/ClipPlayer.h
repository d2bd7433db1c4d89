#pragma once

#include <VextilToolkit/VextilFrameSource.h>
#include <VextilToolkit/VextilVideoFileReader.h>

#include <QTransform>

#include <atomic>
#include <chrono>
#include <thread>

// A host's own camera pipeline in a test: a clip read on a thread of its own at 15 frames a
// second, looping, each frame stored as `stored` turns it and marked with the clockwise quarter
// turn `rotation` that makes it upright again (a sensor mounted sideways). Counts what it hands
// over. Public API only, so that a test of either face can use it.
class ClipPlayer : public VextilFrameSource {
public:
    explicit ClipPlayer(QString clip, QTransform stored = {}, int rotation = 0, std::atomic<int> *delivered = nullptr)
        : m_clip(std::move(clip)), m_stored(stored), m_rotation(rotation), m_delivered(delivered)
    {
    }
    ~ClipPlayer() override { stop(); }
    void start() override
    {
        stop();
        m_running = true;
        m_thread = std::thread([this] {
            VextilVideoFileReader reader;
            reader.open(m_clip);
            const auto started = std::chrono::steady_clock::now();
            while (m_running) {
                auto frame = reader.readFrame();
                if (!frame && (!reader.rewind() || !(frame = reader.readFrame())))
                    return;
                std::this_thread::sleep_until(started + std::chrono::milliseconds(frame->index * 1000 / 15));
                deliver(VextilCameraFrame(m_stored.isIdentity() ? frame->image : frame->image.transformed(m_stored), m_rotation));
                if (m_delivered)
                    ++*m_delivered;
            }
        });
    }
    void stop() override
    {
        m_running = false;
        if (m_thread.joinable())
            m_thread.join();
    }
    bool isRunning() const override { return m_running; }
    QString description() const override { return QStringLiteral("a test's own pipeline"); }
    bool isAvailable() const override { return true; }

private:
    QString m_clip;
    QTransform m_stored;
    int m_rotation;
    std::atomic<int> *m_delivered;
    std::atomic<bool> m_running{false};
    std::thread m_thread;
};
