#pragma once

#include <cstddef>
#include <string>

namespace kestrel::bench {

// Bytes of memory that only this process uses, without the code of libraries other than `library`:
// whether another process shares that code depends on what else runs.
std::size_t private_memory(const std::string& library);

}  // namespace kestrel::bench
