#include "trace/frame_text.h"

#include <array>
#include <cstdio>

#include "base/terminal_text.h"
#include "ipc/items.h"

namespace kestrel {
namespace {

constexpr std::size_t kMaxShownItems = 16;

template <typename... Values>
std::string format(const char* text, Values... values) {
    std::array<char, 64> buffer;
    std::snprintf(buffer.data(), buffer.size(), text, values...);
    return buffer.data();
}

std::string line_start(std::string_view arrow, int pid) {
    const std::string process = pid == 0 ? "?" : std::to_string(pid);
    return std::string(arrow) + format(" %7s ", process.c_str());
}

}  // namespace

std::string frame_text(Direction direction, int pid, const webkit_message& message) {
    const MessageType* type = find_type(direction, message.msg_type);
    std::string line = line_start(direction == Direction::from_page ? "<-" : "->", pid);
    line += format("%3d ", message.msg_type);
    line += type == nullptr ? kUnknownType : type->name;
    const std::string items = items_text(message);
    return items.empty() ? line : line + ' ' + items;
}

std::string items_text(const webkit_message& message) {
    ItemViews items;
    if (!decode_items(message, items)) return "(items do not fit the header)";
    std::string shown;
    std::size_t count = 0;
    const auto append = [&](const std::string& text) {
        if (!shown.empty()) shown += ' ';
        shown += text;
    };
    for (const int value : items.ints) {
        if (count++ < kMaxShownItems) append(std::to_string(value));
    }
    for (const std::string_view text : items.strings) {
        if (count++ < kMaxShownItems) append(quoted(text, kMaxShownCharacters));
    }
    if (count > kMaxShownItems) {
        append("... " + std::to_string(count - kMaxShownItems) + " more items");
    }
    return shown;
}

std::string note_text(int pid, std::string_view note) {
    return line_start("--", pid) + std::string(note);
}

}  // namespace kestrel
