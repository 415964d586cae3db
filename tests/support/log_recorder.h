// A logging client that keeps its lines, so that a test can check what the code under test logs.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace kestrel::testing {

struct LogLine {
    std::uint32_t log_class;
    int level;
    std::string text;

    friend bool operator==(const LogLine&, const LogLine&) = default;
};

// The lines at this level or above that all threads have logged since the last clear_log, in order.
std::vector<LogLine> logged(int lowest_level = 1);
void clear_log();

// Waits until a line with this text has been logged; false if none has in time.
bool wait_for_log(const std::string& text);

// Calls of ZynLogShutdown since clear_log.
int log_shutdowns();

}  // namespace kestrel::testing
