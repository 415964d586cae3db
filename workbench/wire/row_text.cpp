#include "workbench/wire/row_text.h"

#include <array>
#include <cstdint>
#include <cstdio>
#include <string_view>

#include "trace/time_text.h"

namespace kestrel {

std::string time_text(std::chrono::system_clock::time_point time) {
    return local_time(time).substr(0, std::string_view("hh:mm:ss.mmm").size());
}

std::string type_text(const MessageRecord& record) {
    if (!record.frame) return "";
    return std::to_string(record.frame->msg_type) + ' ' + std::string(type_name(record));
}

std::string duration_text(std::chrono::microseconds duration) {
    const std::int64_t count = duration.count();
    const std::int64_t size = count < 0 ? -count : count;
    if (size < 1'000) return std::to_string(count) + " \u00b5s";
    std::array<char, 40> text;
    const bool is_long = size >= 1'000'000;
    std::snprintf(text.data(), text.size(), is_long ? "%.3f s" : "%.1f ms",
                  static_cast<double>(count) / (is_long ? 1e6 : 1e3));
    return text.data();
}

std::string partner_text(const LoggedMessage& message) {
    if (!message.partner) return "";
    return "\u21c4 #" + std::to_string(message.partner->serial) + ", " +
           duration_text(message.partner->between);
}

}  // namespace kestrel
