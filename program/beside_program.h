#pragma once

#include <string>

namespace kestrel {

// The absolute path of what lies at `path`, seen from the running program's directory; "" if there
// is nothing. So a program finds its files wherever it was built or installed.
std::string beside_program(const char* path);

}  // namespace kestrel
