#pragma once

#include <cstdio>

namespace kestrel::fuzz {

// Our own error lines go nowhere from now on: they would be thousands a second. The sanitizers'
// reports do not come through stdio.
inline void silence_error_lines() {
    static std::FILE* const nowhere = std::fopen("/dev/null", "we");
    if (nowhere != nullptr) stderr = nowhere;
}

}  // namespace kestrel::fuzz
