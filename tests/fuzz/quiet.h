#pragma once

#include <cstdio>

namespace kestrel::fuzz {

// Discards our own error lines, of which a fuzzer causes thousands per second. Sanitizers do not
// report through stdio.
inline void silence_error_lines() {
    static std::FILE* const nowhere = std::fopen("/dev/null", "we");
    if (nowhere != nullptr) stderr = nowhere;
}

}  // namespace kestrel::fuzz
