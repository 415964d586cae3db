#pragma once

#include <fstream>
#include <iterator>
#include <string>

namespace kestrel::testing {

// All bytes of a file; none if it cannot be read.
inline std::string file_content(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace kestrel::testing
