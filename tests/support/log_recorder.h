// A logging client that keeps its lines, so that a test can see what the code under test logged.
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

// The lines of this level and higher ones logged since the last clear_log, of all threads, in
// order.
std::vector<LogLine> logged(int lowest_level = 1);
void clear_log();

// Waits until a line with this text has been logged, ten seconds at most; false if none was.
bool wait_for_log(const std::string& text);

// How often ZynLogShutdown was called since clear_log.
int log_shutdowns();

}  // namespace kestrel::testing
