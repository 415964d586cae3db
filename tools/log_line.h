#pragma once

#include <cstdint>
#include <string>

namespace kestrel::tools {

// A log line received from a process.
struct LogLine {
    std::string process;
    std::uint32_t thread;
    std::uint32_t level;
    std::uint32_t log_class;
    std::uint64_t seconds;
    std::uint64_t microseconds;
    std::string text;
};

// One line for humans: local time, process and thread, level, class, text.
std::string text_of(const LogLine& line, bool colours);

// One line of JSON.
std::string json_of(const LogLine& line);

}  // namespace kestrel::tools
