#include "tests/support/wait_until.h"

#include <chrono>

namespace kestrel::testing {

bool wait_until(const std::function<bool()>& condition, const std::function<void()>& pause) {
    using Clock = std::chrono::steady_clock;
    const Clock::time_point deadline = Clock::now() + std::chrono::milliseconds(kPatience);
    while (!condition()) {
        if (Clock::now() > deadline) return false;
        pause();
    }
    return true;
}

}  // namespace kestrel::testing
