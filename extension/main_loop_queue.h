#pragma once

#include <functional>

namespace kestrel {

// Queues `task` for the main loop; tasks run in the order of the calls. They run when the loop is
// idle, or at the priority of WebKit's own work once they have waited a few milliseconds, in slices
// of time: a busy page does not starve them, and many tasks do not freeze the page. Any thread;
// throws std::bad_alloc, and then the task is not queued.
void run_in_main_loop(std::function<void()> task);

}  // namespace kestrel
