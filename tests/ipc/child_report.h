#pragma once

namespace kestrel::testing {

// For a child process that the code under test ends: once it leaves through exit, what it logged
// above VERBOSE goes to standard error, each line as "<class> <level> <text>" and a newline, then
// "shutdowns: " with the number of ZynLogShutdown calls, "SIGPIPE: default" or "SIGPIPE: changed",
// and a newline each. Sets SIGPIPE to its default.
void report_at_exit();

}  // namespace kestrel::testing
