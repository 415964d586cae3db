#pragma once

#include <cstdarg>
#include <cstdint>

namespace kestrel {

// Message levels of the trace calls.
enum LogLevel : int { kVerbose = 1, kInfo, kWarning, kError, kFatal, kAlwaysOn };

// The classes under which this library logs; the numbers are those of the family's class table.
enum LogClass : std::uint32_t { kLogAll = 0, kLogKestrelExtension = 29, kLogWebkit = 41 };

}  // namespace kestrel

extern "C" {

#pragma GCC visibility push(default)

// Prepares logging for the process; a second call while initialised redoes nothing. Returns 1 when
// lines can be written. One thread, at start.
int ZynLogInit();

// Ends logging; trace calls do nothing until the next ZynLogInit. One thread, at the end.
void ZynLogShutdown();

// Writes one line, made from a printf format and its arguments. `log_class` is an index of the
// class table, `level` one of LogLevel; `aux1`, `aux2` and `format` must not be null ("" will do).
// A line that is filtered out, comes before ZynLogInit or cannot be written is lost without a
// word. No newline is added. Any thread.
[[gnu::format(printf, 6, 7)]] void __ZynTrace(std::uint32_t log_class, int level, const char* aux1,
                                              const char* aux2, std::uint64_t aux3,
                                              const char* format, ...);

// The same with a va_list.
[[gnu::format(printf, 6, 0)]] void __ZynTraceV(std::uint32_t log_class, int level, const char* aux1,
                                               const char* aux2, std::uint64_t aux3,
                                               const char* format, std::va_list arguments);

#pragma GCC visibility pop
}
