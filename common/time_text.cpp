#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <string>

#include "common/LinuxCommonUtils.h"

namespace {

constexpr std::size_t kBufferSize = 256;

// The local time in the given format. "" if strftime produces nothing; errno then tells whether
// that was an error.
std::string time_text(const char* format) {
    const std::time_t now = std::time(nullptr);
    std::tm fields{};
    tzset();  // localtime_r may ignore a changed TZ
    localtime_r(&now, &fields);
    std::array<char, kBufferSize> buffer{};
    errno = 0;
    return {buffer.data(), std::strftime(buffer.data(), buffer.size(), format, &fields)};
}

}  // namespace

std::string LinuxCommonUtils::GetTimeStringForLogger() {
    std::string text = time_text("%F_%H_%M_%S_%z");
    if (text.empty() && errno != 0) {
        std::fputs("Some issue with date conversion\n", stderr);
        return "time";
    }
    return text;
}

std::string LinuxCommonUtils::GetCurrentTimeString(const char* format) {
    return format == nullptr ? "" : time_text(format);
}

std::time_t LinuxCommonUtils::ConvertStringToTime(const char* text, const char* format) {
    if (text == nullptr || format == nullptr) return -1;
    const std::string start(text, strnlen(text, kBufferSize - 1));
    std::tm fields{};
    strptime(start.c_str(), format, &fields);
    fields.tm_isdst = -1;  // unknown: the time zone's rules decide
    return std::mktime(&fields);
}
