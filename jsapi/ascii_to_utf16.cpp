#include "jsapi/ascii_to_utf16.h"

#include <cstddef>

namespace kestrel {
namespace {

// Long enough for the compiler to vectorise the loop.
constexpr std::size_t kBlock = 64;

bool widen(const char* from, std::size_t size, char16_t* to) {
    unsigned char seen = 0;
    for (std::size_t i = 0; i < size; ++i) {
        const auto byte = static_cast<unsigned char>(from[i]);
        seen |= byte;
        to[i] = byte;
    }
    return seen <= 0x7f;
}

}  // namespace

bool widen_ascii(std::string_view text, char16_t* to) {
    while (text.size() >= kBlock) {
        if (!widen(text.data(), kBlock, to)) return false;
        text.remove_prefix(kBlock);
        to += kBlock;
    }
    return widen(text.data(), text.size(), to);
}

}  // namespace kestrel
