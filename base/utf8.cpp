#include "base/utf8.h"

#include <array>

namespace kestrel {
namespace {

// The lead byte of a sequence, by the sequence's size.
struct Lead {
    unsigned mask;
    unsigned bits;
    char32_t smallest;  // codes below it have a shorter form
};

constexpr std::array<Lead, 4> kLeads{{
    {0x80, 0x00, 0},
    {0xe0, 0xc0, 0x80},
    {0xf0, 0xe0, 0x800},
    {0xf8, 0xf0, 0x10000},
}};

constexpr unsigned byte_of(char c) { return static_cast<unsigned char>(c); }

constexpr bool is_character(char32_t code, const Lead& lead) {
    const bool surrogate = code >= 0xd800 && code <= 0xdfff;
    return code >= lead.smallest && code <= 0x10ffff && !surrogate;
}

}  // namespace

Utf8Character first_utf8_character(std::string_view text) {
    for (std::size_t size = 1; size <= kLeads.size() && size <= text.size(); ++size) {
        const Lead& lead = kLeads[size - 1];
        if ((byte_of(text[0]) & lead.mask) != lead.bits) continue;
        char32_t code = byte_of(text[0]) & ~lead.mask;
        for (const char next : text.substr(1, size - 1)) {
            if ((byte_of(next) & 0xc0U) != 0x80) return {0, 0};
            code = (code << 6U) | (byte_of(next) & 0x3fU);
        }
        if (!is_character(code, lead)) return {0, 0};
        return {size, code};
    }
    return {0, 0};
}

bool is_utf8(std::string_view text) {
    while (!text.empty()) {
        const std::size_t size = first_utf8_character(text).size;
        if (size == 0) return false;
        text.remove_prefix(size);
    }
    return true;
}

}  // namespace kestrel
