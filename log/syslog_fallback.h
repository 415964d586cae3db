#pragma once

#include <atomic>
#include <cstdarg>

namespace kestrel::logging {

extern constinit std::atomic<bool> syslog_open;

// `ident` is not copied. One thread each.
void open_syslog(const char* ident);
void close_syslog();

// One line to syslog, at the priority that belongs to its level, kVerbose to kAlwaysOn. Any thread.
[[gnu::format(printf, 2, 0)]] void write_to_syslog(int level, const char* format,
                                                   std::va_list arguments);

}  // namespace kestrel::logging
