#pragma once

#include <memory>

// Held by a callback: marks, when destroyed, that the callback's own state is gone, so that a
// test sees a callback replaced while it still runs.
struct AliveGuard {
    explicit AliveGuard(std::shared_ptr<bool> flag) : alive(std::move(flag)) {}
    ~AliveGuard() { *alive = false; }
    AliveGuard(const AliveGuard &) = delete;
    AliveGuard &operator=(const AliveGuard &) = delete;
    std::shared_ptr<bool> alive;
};
