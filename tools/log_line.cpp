#include "tools/log_line.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <cstdio>
#include <ctime>
#include <string_view>

#include "base/terminal_text.h"
#include "log/zynlog.h"
#include "tools/class_and_level_names.h"

namespace kestrel::tools {
namespace {

constexpr std::string_view kPlain = "\033[0m";
constexpr std::string_view kDim = "\033[2m";

constexpr std::string_view colour_of(std::uint32_t level) {
    switch (level) {
        case kVerbose:
            return kDim;
        case kWarning:
            return "\033[33m";
        case kError:
            return "\033[31m";
        case kFatal:
            return "\033[1;31m";
        default:
            return kPlain;
    }
}

// Local time in two strftime formats, with the microseconds between them. A time that localtime_r
// rejects is given in seconds.
std::string local_time(const LogLine& line, const char* before, const char* after) {
    const auto seconds = static_cast<std::time_t>(line.seconds);
    std::array<char, 64> fraction{};
    std::snprintf(fraction.data(), fraction.size(), ".%06u",
                  static_cast<unsigned>(line.microseconds % 1'000'000));
    std::tm local{};
    if (localtime_r(&seconds, &local) == nullptr) {
        return std::to_string(line.seconds) + fraction.data();
    }
    std::array<char, 64> head{};
    std::array<char, 64> tail{};
    std::strftime(head.data(), head.size(), before, &local);
    std::strftime(tail.data(), tail.size(), after, &local);
    return std::string(head.data()) + fraction.data() + tail.data();
}

std::string padded(std::string text, std::size_t width) {
    text.resize(std::max(text.size(), width), ' ');
    return text;
}

std::string_view without_newline(std::string_view text) {
    if (text.ends_with('\n')) text.remove_suffix(1);
    return text;
}

}  // namespace

std::string text_of(const LogLine& line, bool colours) {
    const auto coloured = [&](std::string_view colour, const std::string& text) {
        return colours ? std::string(colour) + text + std::string(kPlain) : text;
    };
    const std::string source = printable(line.process) + "[" + std::to_string(line.thread) + "]";
    return coloured(kDim, local_time(line, "%Y-%m-%d %H:%M:%S", "")) + " " + source + " " +
           coloured(colour_of(line.level), padded(level_name(line.level), 7)) + " " +
           padded(class_name(line.log_class), 7) + " " +
           coloured(colour_of(line.level), printable(without_newline(line.text))) + "\n";
}

std::string json_of(const LogLine& line) {
    const nlohmann::ordered_json json = {
        {"time", local_time(line, "%Y-%m-%dT%H:%M:%S", "%z")},
        {"process", line.process},
        {"thread", line.thread},
        {"level", level_name(line.level)},
        {"class", class_name(line.log_class)},
        {"text", without_newline(line.text)},
    };
    // ASCII only, as the line may be shown on a terminal.
    return json.dump(-1, ' ', true, nlohmann::ordered_json::error_handler_t::replace) + "\n";
}

}  // namespace kestrel::tools
