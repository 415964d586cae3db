#pragma once

#include <functional>

namespace kestrel::testing {

// Runs the default main context until `condition` holds; false when it did not within ninety
// seconds.
bool run_main_loop_until(const std::function<bool()>& condition);

// Runs the default main context until nothing is left to do at once.
void run_main_loop_until_idle();

}  // namespace kestrel::testing
