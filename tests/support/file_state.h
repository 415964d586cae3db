#pragma once

#include <filesystem>
#include <string>

namespace kestrel::testing {

// Kind, mode, owner, size, times and content of what lies there, as text: what would show that
// somebody has touched it. "nothing" where nothing is.
std::string state_of(const std::filesystem::path& path);

}  // namespace kestrel::testing
