#pragma once

#include <string>

namespace kestrel::testing {

// The path of a file of the sample store.
inline std::string store_file(const std::string& name) { return STORE "/" + name; }

}  // namespace kestrel::testing
