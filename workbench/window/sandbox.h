#pragma once

#include <string>
#include <vector>

namespace kestrel {

// Why WebKit's sandbox cannot be used with this home directory and these paths, or "". WebKit would
// then end this program or start no web process.
std::string sandbox_obstacle(const std::string& home, const std::vector<std::string>& paths);

}  // namespace kestrel
