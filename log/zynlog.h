// The client family's logging client: starting, stopping, writing lines. Levels and the other
// shared settings are in zynlog_config.h, the files in zynlog_paths.h.
//
// A line goes to the log daemon, or to syslog when the daemon was not there at the start or has
// gone since; a lost daemon is not looked for again before the next ZynLogInit.
//
// SIGPIPE: the library guards its connecting, but not the writing of lines. The first line after
// the daemon has gone raises SIGPIPE, which ends a program that leaves the signal as it is: a
// program that logs must ignore it, `signal(SIGPIPE, SIG_IGN)`, at its start. No call leaves any
// signal's disposition changed but SIGBUS's.
//
// SIGBUS: the settings are a file mapped into every process of the family. When another process
// cuts that file short, or its disk is full, the kernel raises SIGBUS in whoever looks at the
// settings next. While they are mapped the library handles that signal: the process uses the
// default settings from then on, and cannot change them, until it is shut down and initialised
// again. A SIGBUS with any other reason goes to the handler that was there before. A program that
// installs one later has to pass on what is not its own, as is good custom.
//
// Every call leaves errno as it was. None throws.
#pragma once

#include <cstdarg>
#include <cstdint>

namespace kestrel {

// Message levels of the trace calls.
enum LogLevel : int { kVerbose = 1, kInfo, kWarning, kError, kFatal, kAlwaysOn };

// The classes under which this library logs; the numbers are those of the family's class table.
enum LogClass : std::uint32_t {
    kLogAll = 0,
    kLogKestrel = 28,
    kLogKestrelExtension = 29,
    kLogWebkit = 41
};

}  // namespace kestrel

extern "C" {

#pragma GCC visibility push(default)

// Prepares logging for the process: maps the shared settings, creating their file if need be, opens
// syslog under the name "veltrane-<program>" cut to 31 characters, and connects to the log daemon.
// While initialised, it does none of that again. In both cases it reports a missing daemon to
// syslog. Sets the process's umask to 022 when it maps the settings, whatever it was.
//
// Returns 1 when lines can be written, which after a first call is always so, since syslog is open;
// after ZynLogInitConfigOnly, 0.
//
// One thread, at start, before any other thread logs.
int ZynLogInit();

// Maps the shared settings and does nothing else, for programs that only read or change them: trace
// calls write nothing. Nothing is done again while initialised. Sets the umask as ZynLogInit does.
//
// Returns 1 when the settings are mapped; 0 when their file cannot be created, opened or mapped,
// and all of zynlog_config.h fails.
//
// One thread, at start.
int ZynLogInitConfigOnly();

// Ends logging: disconnects from the daemon, closes syslog, unmaps the settings. Nothing when not
// initialised. Trace calls do nothing until the next init, which starts over.
//
// One thread, at the end. A line that another thread is writing meanwhile may be lost, and does no
// harm; the next init must wait until no such thread is left.
void ZynLogShutdown();

// Writes one line, made from a printf format and its arguments, to the daemon or else to syslog, if
// `level` is kAlwaysOn or not below the working level of the class.
//
// `log_class` is an index of the class table, `level` one of LogLevel; `aux1`, `aux2` and `format`
// must not be null ("" will do), and the three aux values are not used. No newline is added. Text
// beyond 8191 bytes is cut on the way to the daemon.
//
// Reports nothing: a line with bad arguments, before init or after shutdown, filtered out, or not
// taken whole by the daemon is lost without a word. Allocates no memory on the way to the daemon.
// Can block while the daemon does not read. See SIGPIPE above. Any thread.
[[gnu::format(printf, 6, 7)]] void __ZynTrace(std::uint32_t log_class, int level, const char* aux1,
                                              const char* aux2, std::uint64_t aux3,
                                              const char* format, ...);

// The same with a va_list, which is left indeterminate, as by vprintf.
[[gnu::format(printf, 6, 0)]] void __ZynTraceV(std::uint32_t log_class, int level, const char* aux1,
                                               const char* aux2, std::uint64_t aux3,
                                               const char* format, std::va_list arguments);

// Writes one line of no class, which no level filters out: to syslog, if open, and also to the
// daemon, if connected, as of class "ALL". `level` is kVerbose to kFatal; otherwise as __ZynTrace.
[[gnu::format(printf, 5, 6)]] void __ZynLog(int level, const char* aux1, const char* aux2,
                                            std::uint64_t aux3, const char* format, ...);

#pragma GCC visibility pop
}
