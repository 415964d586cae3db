#pragma once

#include <string>

namespace kestrel {

// The path of the running program, cut to 4,095 bytes; "" when it cannot be read. Any thread.
std::string executable_path();

}  // namespace kestrel
