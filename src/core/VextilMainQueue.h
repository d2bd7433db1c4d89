#pragma once

#include <VextilToolkit/VextilToolkitExport.h>

#include <QObject>

#include <functional>

/// Runs work on the GUI thread's event loop, the toolkit's "main queue".
class VEXTIL_EXPORT VextilMainQueue {
public:
    /// Queues work to run later on the GUI thread, in call order, from any thread. The work is
    /// skipped when `guard` is destroyed before it runs. Needs a QCoreApplication.
    static void dispatchAsync(QObject *guard, std::function<void()> work);
    /// Gives a newly made object to the GUI thread, whichever thread made it, so that its
    /// queued work never depends on a worker thread that may have ended.
    static void adopt(QObject *object);
};
