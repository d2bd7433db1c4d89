#pragma once

#include <VextilToolkit/VextilFrameSource.h>

// A camera that is there and sends nothing: a screen under test is handed its picture directly.
class StillCamera : public VextilFrameSource {
public:
    void start() override { m_running = true; }
    void stop() override { m_running = false; }
    bool isRunning() const override { return m_running; }
    QString description() const override { return QStringLiteral("still camera"); }
    bool isAvailable() const override { return true; }

private:
    bool m_running = false;
};
