#pragma once

#include <sys/types.h>

#include "tests/webkit/scripted_host.h"

namespace kestrel::testing {

// The id that the web process has announced last.
pid_t announced(const ScriptedHost& host);

// Waits until the process's main thread, which runs the page, is held up in sending to the host.
bool page_waits_for_host(pid_t web_process);

}  // namespace kestrel::testing
