#include "base/errno_guard.h"
#include "log/daemon_link.h"
#include "log/lifecycle.h"
#include "log/log_record.h"
#include "log/shared_config.h"
#include "log/syslog_fallback.h"
#include "log/zynlog.h"

using kestrel::kAlwaysOn;
using kestrel::kFatal;
using kestrel::kVerbose;
using kestrel::logging::daemon_connected;
using kestrel::logging::initialised;
using kestrel::logging::syslog_open;
using kestrel::logging::write_to_syslog;

namespace {

bool is_valid(int level, int highest_level, const char* aux1, const char* aux2,
              const char* format) {
    return initialised.load(std::memory_order_acquire) && aux1 != nullptr && aux2 != nullptr &&
           format != nullptr && level >= kVerbose && level <= highest_level;
}

// Checked before anything is formatted, as most lines do not pass.
[[gnu::always_inline]] inline bool passes(std::uint32_t log_class, int level) {
    // Signed: kLogFailure and invalid levels count as below all levels.
    const auto working_level =
        static_cast<std::int32_t>(kestrel::logging::working_level(log_class));
    if (level != kAlwaysOn && (working_level > level || working_level < kVerbose)) return false;
    return daemon_connected || syslog_open;
}

[[gnu::format(printf, 3, 0)]] void send_record(std::uint32_t log_class, int level,
                                               const char* format, std::va_list arguments) {
    const kestrel::ErrnoGuard errno_guard;
    const kestrel::logging::LogRecord record(log_class, level, format, arguments);
    kestrel::logging::send_to_daemon(record.bytes());
}

[[gnu::format(printf, 3, 0)]] void write_line(std::uint32_t log_class, int level,
                                              const char* format, std::va_list arguments) {
    if (daemon_connected) {
        send_record(log_class, level, format, arguments);
    } else {
        write_to_syslog(level, format, arguments);
    }
}

}  // namespace

void __ZynTrace(std::uint32_t log_class, int level, const char* aux1, const char* aux2,
                std::uint64_t /*aux3*/, const char* format, ...) {
    if (!is_valid(level, kAlwaysOn, aux1, aux2, format) || !passes(log_class, level)) return;
    std::va_list arguments;
    va_start(arguments, format);
    write_line(log_class, level, format, arguments);
    va_end(arguments);
}

void __ZynTraceV(std::uint32_t log_class, int level, const char* aux1, const char* aux2,
                 std::uint64_t /*aux3*/, const char* format, std::va_list arguments) {
    if (!is_valid(level, kAlwaysOn, aux1, aux2, format) || !passes(log_class, level)) return;
    write_line(log_class, level, format, arguments);
}

void __ZynLog(int level, const char* aux1, const char* aux2, std::uint64_t /*aux3*/,
              const char* format, ...) {
    if (!is_valid(level, kFatal, aux1, aux2, format)) return;
    std::va_list arguments;
    va_start(arguments, format);
    if (syslog_open) {
        std::va_list copy;
        va_copy(copy, arguments);
        write_to_syslog(level, format, copy);
        va_end(copy);
    }
    if (daemon_connected) send_record(kestrel::kLogAll, level, format, arguments);
    va_end(arguments);
}
