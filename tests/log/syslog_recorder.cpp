// Fortified builds call other functions, whose inline callers would conflict with these
// definitions.
#undef _FORTIFY_SOURCE

#include "tests/log/syslog_recorder.h"

#include <syslog.h>

#include <array>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <mutex>

namespace {

constinit std::mutex lock;
std::vector<std::string> recorded;

// Changes errno, as a real syslog may.
void record(std::string call) {
    const std::scoped_lock own(lock);
    recorded.push_back(std::move(call));
    errno = ENOTCONN;
}

[[gnu::format(printf, 3, 0)]] void record_line(const char* function, int priority,
                                               const char* format, std::va_list arguments) {
    std::array<char, 16'384> text;
    std::vsnprintf(text.data(), text.size(), format, arguments);
    record(std::string(function) + "(" + std::to_string(priority) + ", " + text.data() + ")");
}

}  // namespace

extern "C" {

void openlog(const char* ident, int option, int facility) {
    record("openlog(" + std::string(ident) + ", " + std::to_string(option) + ", " +
           std::to_string(facility) + ")");
}

int setlogmask(int mask) noexcept {
    record("setlogmask(" + std::to_string(mask) + ")");
    return 0xff;
}

void vsyslog(int priority, const char* format, std::va_list arguments) {
    record_line("vsyslog", priority, format, arguments);
}

void syslog(int priority, const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    record_line("syslog", priority, format, arguments);
    va_end(arguments);
}

[[gnu::format(printf, 3, 0)]] void __vsyslog_chk(int priority, int /*flag*/, const char* format,
                                                 std::va_list arguments) {
    record_line("vsyslog", priority, format, arguments);
}

[[gnu::format(printf, 3, 4)]] void __syslog_chk(int priority, int /*flag*/, const char* format,
                                                ...) {
    std::va_list arguments;
    va_start(arguments, format);
    record_line("syslog", priority, format, arguments);
    va_end(arguments);
}

void closelog() { record("closelog()"); }
}

namespace kestrel::testing {

std::vector<std::string> syslog_calls() {
    const std::scoped_lock own(lock);
    return recorded;
}

void clear_syslog_calls() {
    const std::scoped_lock own(lock);
    recorded.clear();
}

}  // namespace kestrel::testing
