#include "jsapi/utf16_to_utf8.h"

#include <cstdint>

namespace kestrel {
namespace {

// Long enough for the compiler to vectorise the loops over a block. A longer block is checked
// faster if it is ASCII, and costs more if it is not.
constexpr std::size_t kLongBlock = kUtf8Slack;
constexpr std::size_t kBlock = 32;
constexpr std::size_t kShortBlock = 8;

constexpr char byte(unsigned value) { return static_cast<char>(value); }
constexpr bool is_high(char16_t unit) { return (unit & 0xfc00U) == 0xd800; }
constexpr bool is_low(char16_t unit) { return (unit & 0xfc00U) == 0xdc00; }

// Moves a block of ASCII, without NUL, from `text` to `to`. If the block is anything else, both
// stay, but the bytes behind `to` may have changed.
template <std::size_t size>
bool move_ascii(std::span<const char16_t>& text, char*& to) {
    if (text.size() < size) return false;
    unsigned seen = 0;
    for (std::size_t i = 0; i < size; ++i) {
        const std::uint16_t unit = text[i];
        seen |= static_cast<std::uint16_t>(unit | static_cast<std::uint16_t>(unit - 1U));
        to[i] = byte(unit);
    }
    if ((seen & 0xff80U) != 0) return false;
    text = text.subspan(size);
    to += size;
    return true;
}

bool is_ascii(const char16_t* block) {
    unsigned seen = 0;
    for (std::size_t i = 0; i < kBlock; ++i) {
        const std::uint16_t unit = block[i];
        seen |= static_cast<std::uint16_t>(unit | static_cast<std::uint16_t>(unit - 1U));
    }
    return (seen & 0xff80U) == 0;
}

struct Character {
    std::size_t units;  // 0 where the text ends
    std::size_t bytes;
    unsigned code;
};

// The first character of `text`, which is not empty.
Character decode_front(std::span<const char16_t> text) {
    const char16_t unit = text[0];
    if (unit == 0) return {0, 0, 0};
    if (unit < 0x80) return {1, 1, unit};
    if (unit < 0x800) return {1, 2, unit};
    if (!is_high(unit) && !is_low(unit)) return {1, 3, unit};
    if (is_low(unit) || text.size() < 2 || !is_low(text[1])) return {0, 0, 0};
    return {2, 4, 0x10000U + ((unit & 0x3ffU) << 10U) + (text[1] & 0x3ffU)};
}

char* write_character(const Character& character, char* to) {
    const unsigned code = character.code;
    switch (character.bytes) {
        case 1:
            to[0] = byte(code);
            break;
        case 2:
            to[0] = byte(0xc0U | code >> 6U);
            to[1] = byte(0x80U | (code & 0x3fU));
            break;
        case 3:
            to[0] = byte(0xe0U | code >> 12U);
            to[1] = byte(0x80U | (code >> 6U & 0x3fU));
            to[2] = byte(0x80U | (code & 0x3fU));
            break;
        default:
            to[0] = byte(0xf0U | code >> 18U);
            to[1] = byte(0x80U | (code >> 12U & 0x3fU));
            to[2] = byte(0x80U | (code >> 6U & 0x3fU));
            to[3] = byte(0x80U | (code & 0x3fU));
            break;
    }
    return to + character.bytes;
}

// Calls `take` with each character of the next block. False where the text ends. A surrogate pair
// may extend over the end of the block.
template <typename Take>
bool for_each_of_block(std::span<const char16_t>& text, Take take) {
    const std::size_t rest = text.size() > kBlock ? text.size() - kBlock : 0;
    while (text.size() > rest) {
        const Character character = decode_front(text);
        if (character.units == 0) return false;
        take(character);
        text = text.subspan(character.units);
    }
    return true;
}

}  // namespace

char* write_utf8(std::span<const char16_t> text, char* to) {
    const auto write = [&to](const Character& character) { to = write_character(character, to); };
    while (!text.empty()) {
        if (move_ascii<kLongBlock>(text, to)) continue;
        const std::size_t rest = text.size() > kLongBlock ? text.size() - kLongBlock : 0;
        while (text.size() > rest) {
            if (move_ascii<kBlock>(text, to) || move_ascii<kShortBlock>(text, to)) continue;
            if (!for_each_of_block(text, write)) return to;
        }
    }
    return to;
}

std::size_t utf8_size(std::span<const char16_t> text) {
    std::size_t size = 0;
    const auto count = [&size](const Character& character) { size += character.bytes; };
    while (!text.empty()) {
        if (text.size() >= kBlock && is_ascii(text.data())) {
            size += kBlock;
            text = text.subspan(kBlock);
        } else if (!for_each_of_block(text, count)) {
            break;
        }
    }
    return size;
}

}  // namespace kestrel
