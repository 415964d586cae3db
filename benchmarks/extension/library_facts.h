#pragma once

#include <cstddef>

namespace kestrel::bench {

// What loading a library gives the dynamic linker to do.
struct LibraryFacts {
    std::size_t relocations = 0;
    std::size_t constructors = 0;
};

// `library` is a handle of dlopen.
LibraryFacts facts_of(void* library);

// The bytes of this process that are in memory, exactly.
std::size_t resident_bytes();

// Nanoseconds that loading the library at `path` takes: the median of several times.
double nanoseconds_to_load(const char* path);

}  // namespace kestrel::bench
