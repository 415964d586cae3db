// Replaces the C library's syslog in the test program.
#pragma once

#include <string>
#include <vector>

namespace kestrel::testing {

// The calls made so far, in order, as "openlog(veltrane-x, 3, 8)", "setlogmask(127)",
// "syslog(3, text)", "vsyslog(4, text)" and "closelog()".
std::vector<std::string> syslog_calls();

void clear_syslog_calls();

}  // namespace kestrel::testing
