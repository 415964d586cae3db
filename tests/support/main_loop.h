#pragma once

#include <functional>

namespace kestrel::testing {

// wait_until, which runs the default main context meanwhile.
bool run_main_loop_until(const std::function<bool()>& condition);

// Dispatches all sources of the default main context that are ready.
void run_main_loop_until_idle();

}  // namespace kestrel::testing
