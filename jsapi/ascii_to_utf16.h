#pragma once

#include <string_view>

namespace kestrel {

// Writes a unit for each byte to `to`. False, with part of them written, if `text` is not ASCII.
bool widen_ascii(std::string_view text, char16_t* to);

}  // namespace kestrel
