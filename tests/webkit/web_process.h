#pragma once

#include <sys/types.h>

#include <string>

namespace kestrel::testing {

// The process id of the latest announcement.
template <typename Host>
pid_t announced(Host& host) {
    return static_cast<pid_t>(std::stoi(host.frames(61).back().payload));
}

// Waits until the main thread of the web process is blocked in sending to the host.
bool page_waits_for_host(pid_t web_process);

}  // namespace kestrel::testing
