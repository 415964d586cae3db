#include "trace/time_text.h"

#include <array>
#include <cstdio>
#include <ctime>

namespace kestrel {
namespace {

using std::chrono::system_clock;

std::string with_microseconds(const char* format, const std::tm& fields,
                              system_clock::time_point time) {
    const auto second = std::chrono::floor<std::chrono::seconds>(time);
    const auto fraction = std::chrono::floor<std::chrono::microseconds>(time - second);
    std::array<char, 40> text;
    const std::size_t length = std::strftime(text.data(), text.size(), format, &fields);
    std::snprintf(text.data() + length, text.size() - length, ".%06d",
                  static_cast<int>(fraction.count()));
    return text.data();
}

std::time_t whole_seconds(system_clock::time_point time) {
    return system_clock::to_time_t(std::chrono::floor<std::chrono::seconds>(time));
}

}  // namespace

std::string local_time(system_clock::time_point time) {
    const std::time_t seconds = whole_seconds(time);
    std::tm fields{};
    localtime_r(&seconds, &fields);
    return with_microseconds("%H:%M:%S", fields, time);
}

std::string utc_time(system_clock::time_point time) {
    const std::time_t seconds = whole_seconds(time);
    std::tm fields{};
    gmtime_r(&seconds, &fields);
    return with_microseconds("%Y-%m-%dT%H:%M:%S", fields, time) + 'Z';
}

}  // namespace kestrel
