#include "log/syslog_fallback.h"

#include <syslog.h>

#include <array>

#include "base/errno_guard.h"
#include "log/zynlog.h"

namespace kestrel::logging {

constinit std::atomic<bool> syslog_open = false;

namespace {

// LOG_EMERG to LOG_INFO.
constexpr int kPassedPriorities = 0x7f;

// Indexed by message level.
constexpr std::array kPriorities = {LOG_INFO, LOG_INFO,  LOG_NOTICE, LOG_WARNING,
                                    LOG_ERR,  LOG_ALERT, LOG_INFO};
static_assert(kPriorities.size() == kAlwaysOn + 1);

}  // namespace

void open_syslog(const char* ident) {
    openlog(ident, LOG_CONS | LOG_PID, LOG_USER);
    setlogmask(kPassedPriorities);
    syslog_open = true;
}

void close_syslog() {
    if (syslog_open.exchange(false)) closelog();
}

void write_to_syslog(int level, const char* format, std::va_list arguments) {
    const ErrnoGuard errno_guard;
    vsyslog(kPriorities[static_cast<std::size_t>(level)], format, arguments);
}

}  // namespace kestrel::logging
