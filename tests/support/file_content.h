#pragma once

#include <fstream>
#include <iterator>
#include <string>

namespace kestrel::testing {

// The content of a file; empty if it cannot be read.
inline std::string file_content(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace kestrel::testing
