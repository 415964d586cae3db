// Script text on its way to the wire.
#pragma once

#include <cstddef>
#include <span>

namespace kestrel {

// A UTF-16 unit becomes at most so many bytes.
inline constexpr std::size_t kMaxBytesOfUnit = 3;

// How many bytes `text` takes, up to its first U+0000 or unpaired surrogate.
std::size_t utf8_size(std::span<const char16_t> text);

// What writing a text may overwrite behind its end.
inline constexpr std::size_t kUtf8Slack = 256;

// Writes those bytes to `to`; returns their end. There must be room for them and the slack, or for
// kMaxBytesOfUnit bytes a unit.
char* write_utf8(std::span<const char16_t> text, char* to);

}  // namespace kestrel
