#include <VextilToolkit/VextilVideoFileSource.h>

#include "camera/VextilVideoDecoder.h"

#include <chrono>

VextilVideoFileSource::VextilVideoFileSource(QString path, bool loop) : m_path(std::move(path)), m_loop(loop) {}

VextilVideoFileSource::~VextilVideoFileSource() { stop(); }

bool VextilVideoFileSource::isAvailable() const { return VextilVideoDecoder().open(m_path); }

void VextilVideoFileSource::start()
{
    if (m_running)
        return;
    stop();
    m_running = true;
    m_thread = std::thread([this] { play(); });
}

void VextilVideoFileSource::stop()
{
    m_running = false;
    if (m_thread.joinable())
        m_thread.join();
}

void VextilVideoFileSource::play()
{
    VextilVideoDecoder decoder;
    if (!decoder.open(m_path)) {
        m_running = false;
        return;
    }
    // Paced by the file's timestamps against a steady clock, as a camera delivers in real time.
    // Each frame is decoded when its time comes rather than ahead of it: the one before is then
    // usually analysed already, and the codec decodes this one into its buffer.
    auto started = std::chrono::steady_clock::now();
    while (m_running) {
        std::this_thread::sleep_until(started + std::chrono::duration_cast<std::chrono::steady_clock::duration>(
                                                    std::chrono::duration<double>(decoder.nextSeconds())));
        if (!m_running)
            break;
        auto frame = decoder.read();
        if (!frame) {
            if (!m_loop || !decoder.rewind())
                break;
            started = std::chrono::steady_clock::now();
            continue;
        }
        // As a camera's: converted only as far as the capture takes the frame.
        deliver(frame->picture.cameraFrame());
    }
    m_running = false;
}
