#pragma once

#include <string>

namespace kestrel {

// The absolute path of `path`, relative to the running program's directory; "" if it does not
// exist. With it a program finds its files in the build tree and after installation.
std::string beside_program(const char* path);

}  // namespace kestrel
