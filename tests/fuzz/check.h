#pragma once

#include <cstdio>
#include <cstdlib>

namespace kestrel::fuzz {

// Aborts unless `holds`, which libFuzzer reports as a crash. The location is the caller's; clang 14
// has no std::source_location.
inline void check(bool holds, const char* file = __builtin_FILE(), int line = __builtin_LINE()) {
    if (holds) return;
    std::fprintf(stdout, "%s:%d: does not hold\n", file, line);
    std::fflush(stdout);
    std::abort();
}

}  // namespace kestrel::fuzz
