#include "benchmarks/extension/private_memory.h"

#include <cstdio>
#include <fstream>

namespace kestrel::bench {

std::size_t private_memory(const std::string& library) {
    std::ifstream file("/proc/self/smaps");
    std::size_t kilobytes = 0;
    bool is_library = false;
    for (std::string line; std::getline(file, line);) {
        std::size_t value = 0;
        if (std::sscanf(line.c_str(), "Private_Dirty: %zu", &value) == 1 ||
            (is_library && std::sscanf(line.c_str(), "Private_Clean: %zu", &value) == 1)) {
            kilobytes += value;
        } else if (const std::size_t word = line.find_first_of(" :");
                   word != std::string::npos && line[word] == ' ') {
            is_library = line.ends_with(library);  // a new mapping: addresses, ..., file
        }
    }
    return kilobytes * 1024;
}

}  // namespace kestrel::bench
