#pragma once

#include <sched.h>

#include <functional>

namespace kestrel::testing {

// The time limit of every wait in a test, in milliseconds.
inline constexpr int kPatience = 90'000;

// Waits until `condition` holds, and calls `pause` between the checks; false when it does not hold
// in time. For conditions that no event announces to the test; main_loop.h has the same for a test
// with a main loop.
bool wait_until(
    const std::function<bool()>& condition,
    const std::function<void()>& pause = [] { sched_yield(); });

}  // namespace kestrel::testing
