// Converts UTF-16 to UTF-8.
#pragma once

#include <cstddef>
#include <span>

namespace kestrel {

// The most bytes that a UTF-16 unit takes.
inline constexpr std::size_t kMaxBytesOfUnit = 3;

// The number of bytes of `text` up to its first U+0000 or unpaired surrogate.
std::size_t utf8_size(std::span<const char16_t> text);

// The number of bytes behind the text that writing may overwrite.
inline constexpr std::size_t kUtf8Slack = 256;

// Writes those bytes to `to` and returns their end. Needs room for them and the slack, or for
// kMaxBytesOfUnit bytes per unit.
char* write_utf8(std::span<const char16_t> text, char* to);

}  // namespace kestrel
