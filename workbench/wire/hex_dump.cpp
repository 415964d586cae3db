#include "workbench/wire/hex_dump.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace kestrel {
namespace {

constexpr std::size_t kBytesPerLine = 16;

constexpr bool is_printable(char c) { return c >= ' ' && c <= '~'; }

void append_hex(std::string& text, unsigned value, int digits) {
    std::array<char, 9> buffer;
    std::snprintf(buffer.data(), buffer.size(), "%0*x", digits, value);
    text += buffer.data();
}

void append_line(std::string& text, std::size_t offset, std::span<const char> bytes) {
    append_hex(text, static_cast<unsigned>(offset), 8);
    for (std::size_t i = 0; i < kBytesPerLine; ++i) {
        text += i % 8 == 0 ? "  " : " ";
        if (i < bytes.size()) {
            append_hex(text, static_cast<unsigned char>(bytes[i]), 2);
        } else {
            text += "  ";
        }
    }
    text += "  |";
    for (const char c : bytes) text += is_printable(c) ? c : '.';
    text += "|\n";
}

}  // namespace

std::string hex_dump(std::span<const char> bytes, std::size_t limit) {
    std::string text;
    const std::size_t shown = std::min(bytes.size(), limit);
    for (std::size_t offset = 0; offset < shown; offset += kBytesPerLine) {
        append_line(text, offset, bytes.subspan(offset, std::min(kBytesPerLine, shown - offset)));
    }
    if (shown < bytes.size()) text += std::to_string(bytes.size() - shown) + " more bytes\n";
    return text;
}

}  // namespace kestrel
