#include "tests/webkit/web_process.h"

#include <sys/syscall.h>

#include "tests/support/main_loop.h"
#include "tests/support/process_state.h"

namespace kestrel::testing {

bool page_waits_for_host(pid_t web_process) {
    bool has_waited = false;  // a signal may interrupt it before the condition is checked again
    return run_main_loop_until(
        [&] { return has_waited = has_waited || is_blocked_in(web_process, SYS_sendto); });
}

}  // namespace kestrel::testing
