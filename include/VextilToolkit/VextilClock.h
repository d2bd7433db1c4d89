#pragma once

#include <chrono>
#include <functional>

/// Time as the face capture model measures it: only differences matter.
using VextilTimePoint = std::chrono::steady_clock::time_point;

/// Source of the current time; tests and simulations inject their own to pace capture
/// without sleeping. Called on the capture thread.
using VextilClock = std::function<VextilTimePoint()>;
