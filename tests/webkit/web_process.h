#pragma once

#include <sys/types.h>

#include <string>

namespace kestrel::testing {

// The id that the web process has announced last, to a host of either kind.
template <typename Host>
pid_t announced(Host& host) {
    return static_cast<pid_t>(std::stoi(host.frames(61).back().payload));
}

// Waits until the process's main thread, which runs the page, is held up in sending to the host.
bool page_waits_for_host(pid_t web_process);

}  // namespace kestrel::testing
