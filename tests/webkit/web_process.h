#pragma once

#include <sys/types.h>

namespace kestrel::testing {

// Waits until the process's main thread, which runs the page, is held up in sending to the host.
bool page_waits_for_host(pid_t web_process);

}  // namespace kestrel::testing
