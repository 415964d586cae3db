#pragma once

#include <cstddef>

namespace kestrel::bench {

// The dynamic linker's work for a library.
struct LibraryFacts {
    std::size_t relocations = 0;
    std::size_t constructors = 0;
};

// Loads and unloads the library at `path`.
LibraryFacts facts_of(const char* path);

// Median time to load the library at `path`, which must not be loaded.
double nanoseconds_to_load(const char* path);

}  // namespace kestrel::bench
