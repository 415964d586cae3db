#include "tests/webkit/web_process.h"

#include <sys/syscall.h>

#include <cstdlib>

#include "tests/support/main_loop.h"
#include "tests/support/process_state.h"

namespace kestrel::testing {

pid_t announced(const ScriptedHost& host) {
    return static_cast<pid_t>(std::atoi(host.frames(61).back().payload.c_str()));
}

bool page_waits_for_host(pid_t web_process) {
    return run_main_loop_until([=] { return is_blocked_in(web_process, SYS_sendto); });
}

}  // namespace kestrel::testing
