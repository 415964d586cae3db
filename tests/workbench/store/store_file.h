#pragma once

#include <string>

namespace kestrel::testing {

// Where a file of the sample store lies.
inline std::string store_file(const std::string& name) { return STORE "/" + name; }

}  // namespace kestrel::testing
