#pragma once

#include <cstddef>
#include <string_view>

namespace kestrel {

struct Utf8Character {
    std::size_t size;  // bytes; 0 if invalid
    char32_t code;
};

// Decodes the first character. Size 0 for "" and for invalid bytes: an incomplete or overlong
// sequence, a surrogate, or a code above U+10FFFF.
Utf8Character first_utf8_character(std::string_view text);

bool is_utf8(std::string_view text);

}  // namespace kestrel
