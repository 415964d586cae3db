#include "host/message_line.h"

#include <glib.h>

#include <array>
#include <cstdio>

#include "ipc/frame.h"

namespace kestrel {
namespace {

constexpr std::size_t kMaxShownCharacters = 80;
constexpr std::size_t kMaxShownItems = 16;

// What g_utf8_get_char_validated gives for bytes that are no character.
constexpr auto kBroken = static_cast<gunichar>(-1);
constexpr auto kIncomplete = static_cast<gunichar>(-2);

template <typename... Values>
std::string format(const char* text, Values... values) {
    std::array<char, 128> buffer;
    std::snprintf(buffer.data(), buffer.size(), text, values...);
    return buffer.data();
}

// The bytes of the character that `text` begins with; 1 if it begins with none.
std::size_t character_size(const char* text, std::size_t size, gunichar& character) {
    character = g_utf8_get_char_validated(text, static_cast<gssize>(size));
    if (character == kBroken || character == kIncomplete) {
        character = kBroken;
        return 1;
    }
    return static_cast<std::size_t>(g_utf8_next_char(text) - text);
}

std::string shown_character(gunichar character, std::string_view bytes) {
    switch (character) {
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
        case kBroken:
            return format("\\x%02x", static_cast<unsigned char>(bytes[0]));
        default:
            break;
    }
    const GUnicodeType type = g_unichar_type(character);
    const bool parts_lines =
        type == G_UNICODE_LINE_SEPARATOR || type == G_UNICODE_PARAGRAPH_SEPARATOR;
    if (g_unichar_isprint(character) != FALSE && !parts_lines) return std::string(bytes);
    return format("\\u{%x}", character);
}

std::string_view type_name(Direction direction, std::int32_t code) {
    const MessageType* type =
        direction == Direction::from_page ? find_type(kToHost, code) : find_type(kToPage, code);
    return type == nullptr ? "(unknown)" : type->name;
}

std::string shown_items(const webkit_message& message) {
    Items items;
    if (!decode_items(message, items)) return " (items do not fit the header)";
    std::string shown;
    std::size_t count = 0;
    for (const int value : items.ints) {
        if (count++ < kMaxShownItems) shown += " " + std::to_string(value);
    }
    for (const std::string& text : items.strings) {
        if (count++ < kMaxShownItems) shown += " " + shown_text(text);
    }
    if (count > kMaxShownItems) {
        shown += " ... " + std::to_string(count - kMaxShownItems) + " more items";
    }
    return shown;
}

}  // namespace

std::string shown_pid(int pid) { return pid == 0 ? "?" : std::to_string(pid); }

std::string shown_text(std::string_view text) {
    std::string shown = "\"";
    std::size_t characters = 0;
    while (!text.empty() && characters < kMaxShownCharacters) {
        gunichar character = 0;
        const std::size_t size = character_size(text.data(), text.size(), character);
        shown += shown_character(character, text.substr(0, size));
        text.remove_prefix(size);
        ++characters;
    }
    shown += '"';
    if (!text.empty()) shown += "... " + std::to_string(text.size()) + " more bytes";
    return shown;
}

std::string message_line(Direction direction, int pid, const webkit_message& message) {
    const std::string_view name = type_name(direction, message.msg_type);
    std::string line = format("%s %7s %3d %.*s", direction == Direction::from_page ? "<-" : "->",
                              shown_pid(pid).c_str(), message.msg_type,
                              static_cast<int>(name.size()), name.data());
    return line + shown_items(message);
}

}  // namespace kestrel
