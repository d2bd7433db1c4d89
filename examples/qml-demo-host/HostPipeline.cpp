#include "HostPipeline.h"

#include <VextilToolkit/VextilVideoFileReader.h>

#include <chrono>

void HostPipeline::start()
{
    stop();
    m_running = true;
    m_thread = std::thread([this] { run(); });
}

void HostPipeline::stop()
{
    m_running = false;
    if (m_thread.joinable())
        m_thread.join();
}

void HostPipeline::run()
{
    VextilVideoFileReader reader;
    if (!reader.open(m_clip))
        return;
    const double fps = reader.framesPerSecond() > 0 ? reader.framesPerSecond() : 30.0;
    auto started = std::chrono::steady_clock::now();
    while (m_running) {
        auto frame = reader.readFrame();
        if (!frame) {  // loops, as a camera goes on
            if (!reader.rewind() || !(frame = reader.readFrame()))
                return;
            started = std::chrono::steady_clock::now();
        }
        std::this_thread::sleep_until(started + std::chrono::microseconds(qint64(frame->index * 1e6 / fps)));
        deliver(VextilCameraFrame(frame->image, 0));
    }
}
