#pragma once

#include <VextilToolkit/VextilFrameSource.h>

// A camera that delivers only the frames a test hands it, on the test's own thread.
class ManualSource : public VextilFrameSource {
public:
    void push(const VextilCameraFrame &frame) { deliver(frame); }
    void start() override {}
    void stop() override {}
    bool isRunning() const override { return false; }
    QString description() const override { return QStringLiteral("manual"); }
    bool isAvailable() const override { return true; }
};
