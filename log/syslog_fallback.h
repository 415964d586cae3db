#pragma once

#include <atomic>
#include <cstdarg>

namespace kestrel::logging {

extern constinit std::atomic<bool> syslog_open;

// `ident` is not copied. Not thread-safe.
void open_syslog(const char* ident);
void close_syslog();

// Writes a line to syslog. The level, kVerbose to kAlwaysOn, selects the priority. Any thread.
[[gnu::format(printf, 2, 0)]] void write_to_syslog(int level, const char* format,
                                                   std::va_list arguments);

}  // namespace kestrel::logging
