#include "tests/webkit/web_process.h"

#include <sys/syscall.h>

#include <fstream>
#include <string>

#include "tests/support/main_loop.h"

namespace kestrel::testing {

// A running thread's file says "running"; a sleeping one's begins with the system call's number.
bool page_waits_for_host(pid_t web_process) {
    const std::string path = "/proc/" + std::to_string(web_process) + "/syscall";
    return run_main_loop_until([&] {
        long number = -1;
        return std::ifstream(path) >> number && number == SYS_sendto;
    });
}

}  // namespace kestrel::testing
