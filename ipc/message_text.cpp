#include "ipc/message_text.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "ipc/frame.h"
#include "ipc/utf8.h"

namespace kestrel {
namespace {

constexpr std::size_t kMaxShownItems = 16;

struct CharacterRange {
    char32_t first;
    char32_t last;
};

// Controls, and characters that show nothing, end a line or turn the direction of writing.
constexpr auto kUnprintable = std::to_array<CharacterRange>({
    {0x00, 0x1f},
    {0x7f, 0x9f},
    {0xad, 0xad},
    {0x61c, 0x61c},
    {0x180e, 0x180e},
    {0x200b, 0x200f},
    {0x2028, 0x202e},
    {0x2060, 0x206f},
    {0xfeff, 0xfeff},
    {0xfff0, 0xfffb},
    {0xfffe, 0xffff},
    {0xe0000, 0xe0fff},
});

bool is_printable(char32_t code) {
    return std::ranges::none_of(kUnprintable, [code](const CharacterRange& range) {
        return code >= range.first && code <= range.last;
    });
}

template <typename... Values>
std::string format(const char* text, Values... values) {
    std::array<char, 64> buffer;
    std::snprintf(buffer.data(), buffer.size(), text, values...);
    return buffer.data();
}

std::string shown_character(char32_t code, std::string_view bytes) {
    switch (code) {
        case '"':
            return "\\\"";
        case '\\':
            return "\\\\";
        case '\n':
            return "\\n";
        case '\r':
            return "\\r";
        case '\t':
            return "\\t";
        default:
            break;
    }
    if (is_printable(code)) return std::string(bytes);
    return format("\\u{%x}", static_cast<unsigned>(code));
}

std::string line_start(std::string_view arrow, int pid) {
    const std::string process = pid == 0 ? "?" : std::to_string(pid);
    return std::string(arrow) + format(" %7s ", process.c_str());
}

}  // namespace

std::string message_text(Direction direction, int pid, const webkit_message& message) {
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
        if (count++ < kMaxShownItems) append(quoted_text(text));
    }
    if (count > kMaxShownItems) {
        append("... " + std::to_string(count - kMaxShownItems) + " more items");
    }
    return shown;
}

std::string note_text(int pid, std::string_view note) {
    return line_start("--", pid) + std::string(note);
}

std::string quoted_text(std::string_view text, std::size_t max_characters) {
    std::string shown = "\"";
    for (std::size_t count = 0; !text.empty() && count < max_characters; ++count) {
        const Utf8Character character = first_character(text);
        const std::size_t size = std::max<std::size_t>(character.size, 1);
        shown += character.size == 0 ? format("\\x%02x", static_cast<unsigned char>(text[0]))
                                     : shown_character(character.code, text.substr(0, size));
        text.remove_prefix(size);
    }
    shown += '"';
    if (!text.empty()) shown += "... " + std::to_string(text.size()) + " more bytes";
    return shown;
}

}  // namespace kestrel
