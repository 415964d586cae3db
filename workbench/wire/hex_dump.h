#pragma once

#include <cstddef>
#include <span>
#include <string>

namespace kestrel {

// Lines of an offset, 16 bytes in hexadecimal, and the same bytes as ASCII:
//   00000000  12 00 00 00 00 00 00 00  02 00 00 00 09 00 00 00  |................|
// Each line ends with a newline. A last line counts the bytes after the first `limit`.
std::string hex_dump(std::span<const char> bytes, std::size_t limit);

}  // namespace kestrel
