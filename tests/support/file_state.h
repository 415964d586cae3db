#pragma once

#include <filesystem>
#include <string>

namespace kestrel::testing {

// Type, mode, owner, size, times and content of a file as text, which differs after any change to
// it; "nothing" if there is no file.
std::string state_of(const std::filesystem::path& path);

}  // namespace kestrel::testing
