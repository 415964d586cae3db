#pragma once

#include <string>

namespace kestrel {

// The path of the running program, truncated to 4,095 bytes; "" on failure. Any thread.
std::string executable_path();

}  // namespace kestrel
