#include "base/terminal_text.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "base/utf8.h"

namespace kestrel {
namespace {

struct CharacterRange {
    char32_t first;
    char32_t last;
};

// Control characters, and characters that are invisible, end a line or change the direction of
// writing.
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

std::string format(const char* text, unsigned value) {
    std::array<char, 16> buffer{};
    std::snprintf(buffer.data(), buffer.size(), text, value);
    return buffer.data();
}

std::string hex_bytes(std::string_view bytes) {
    std::string text;
    for (const char byte : bytes) text += format("\\x%02x", static_cast<unsigned char>(byte));
    return text;
}

enum class Style { plain, quoted };

std::string shown(std::string_view bytes, const Utf8Character& character, Style style) {
    const bool is_quoted = style == Style::quoted;
    if (character.size == 0) return hex_bytes(bytes);
    if (character.code == '\n') return "\\n";
    if (character.code == '\t') return "\\t";
    if (is_quoted && character.code == '\r') return "\\r";
    if (is_quoted && (character.code == '"' || character.code == '\\')) {
        return "\\" + std::string(bytes);
    }
    if (is_printable(character.code)) return std::string(bytes);
    const bool is_control = character.code < 0xa0;
    return is_control && !is_quoted ? hex_bytes(bytes) : format("\\u{%x}", character.code);
}

// Moves one character, or one byte that is not part of a character, from the front of `text` to
// `to`.
void show_next(std::string_view& text, Style style, std::string& to) {
    const Utf8Character character = first_utf8_character(text);
    const std::size_t size = std::max<std::size_t>(character.size, 1);
    to += shown(text.substr(0, size), character, style);
    text.remove_prefix(size);
}

}  // namespace

std::string printable(std::string_view text) {
    std::string result;
    while (!text.empty()) show_next(text, Style::plain, result);
    return result;
}

std::string quoted(std::string_view text, std::size_t max_characters) {
    std::string result = "\"";
    for (std::size_t count = 0; !text.empty() && count < max_characters; ++count) {
        show_next(text, Style::quoted, result);
    }
    result += '"';
    if (!text.empty()) result += "... " + std::to_string(text.size()) + " more bytes";
    return result;
}

}  // namespace kestrel
