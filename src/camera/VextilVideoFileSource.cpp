#include <VextilToolkit/VextilVideoFileSource.h>

#include <VextilToolkit/VextilVideoFileReader.h>

#include <chrono>

VextilVideoFileSource::VextilVideoFileSource(QString path, bool loop) : m_path(std::move(path)), m_loop(loop) {}

VextilVideoFileSource::~VextilVideoFileSource() { stop(); }

bool VextilVideoFileSource::isAvailable() const { return VextilVideoFileReader().open(m_path); }

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
    VextilVideoFileReader reader;
    if (!reader.open(m_path)) {
        m_running = false;
        return;
    }
    // Paced by the file's timestamps against a steady clock, as a camera delivers in real time.
    auto started = std::chrono::steady_clock::now();
    while (m_running) {
        auto frame = reader.readFrame();
        if (!frame) {
            if (!m_loop || !reader.rewind())
                break;
            started = std::chrono::steady_clock::now();
            continue;
        }
        std::this_thread::sleep_until(started + std::chrono::duration_cast<std::chrono::steady_clock::duration>(
                                                    std::chrono::duration<double>(frame->seconds)));
        if (m_running)
            deliver(frame->image);
    }
    m_running = false;
}
