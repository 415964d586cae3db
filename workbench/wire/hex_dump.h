#pragma once

#include <cstddef>
#include <span>
#include <string>

namespace kestrel {

// Bytes as offset, 16 of them in hexadecimal, and the ASCII characters among them:
//   00000000  12 00 00 00 00 00 00 00  02 00 00 00 09 00 00 00  |................|
// Lines end with a newline. What is behind the first `limit` bytes is only counted, in a last line.
std::string hex_dump(std::span<const char> bytes, std::size_t limit);

}  // namespace kestrel
