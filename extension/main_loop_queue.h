#pragma once

#include <functional>

namespace kestrel {

// Has `work` done when the main loop is idle, in the order of the calls. One wake-up of the loop
// serves all that waits, which is why messages that come thick and fast cost little. Any thread;
// throws std::bad_alloc, and then nothing is done.
void run_in_main_loop(std::function<void()> work);

}  // namespace kestrel
