#pragma once

#include <cstddef>
#include <string_view>

namespace kestrel {

struct Utf8Character {
    std::size_t size;  // bytes; 0 where no character begins
    char32_t code;
};

// The character that `text` begins with. Size 0 for "" and for bytes that are no character:
// incomplete, longer than need be, a surrogate, or above U+10FFFF.
Utf8Character first_character(std::string_view text);

bool is_utf8(std::string_view text);

}  // namespace kestrel
