#include "tests/ipc/child_report.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>

#include "log/zynlog.h"
#include "tests/support/log_recorder.h"

namespace kestrel::testing {
namespace {

void report() {
    for (const LogLine& line : logged(kInfo)) {
        std::fprintf(stderr, "%u %d %s\n", line.log_class, line.level, line.text.c_str());
    }
    std::fprintf(stderr, "shutdowns: %d\n", log_shutdowns());
    struct sigaction action {};
    sigaction(SIGPIPE, nullptr, &action);
    std::fprintf(stderr, "SIGPIPE: %s\n", action.sa_handler == SIG_DFL ? "default" : "changed");
}

}  // namespace

void report_at_exit() {
    clear_log();
    std::signal(SIGPIPE, SIG_DFL);
    std::atexit(report);
}

}  // namespace kestrel::testing
