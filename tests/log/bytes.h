// Decodes the client's output without the client's definitions.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace kestrel::testing {

// The little-endian number of `width` bytes at an offset.
inline std::uint64_t number_at(std::string_view bytes, std::size_t offset, std::size_t width) {
    std::uint64_t value = 0;
    for (std::size_t index = width; index > 0; --index) {
        value = value << 8U | static_cast<unsigned char>(bytes.at(offset + index - 1));
    }
    return value;
}

inline std::uint64_t u16_at(std::string_view bytes, std::size_t offset) {
    return number_at(bytes, offset, 2);
}
inline std::uint64_t u32_at(std::string_view bytes, std::size_t offset) {
    return number_at(bytes, offset, 4);
}
inline std::uint64_t u64_at(std::string_view bytes, std::size_t offset) {
    return number_at(bytes, offset, 8);
}

inline void put_u32(std::string& bytes, std::size_t offset, std::uint32_t value) {
    for (unsigned shift = 0; shift < 32; shift += 8) {
        bytes.at(offset + shift / 8) = static_cast<char>(value >> shift & 0xffU);
    }
}

}  // namespace kestrel::testing
