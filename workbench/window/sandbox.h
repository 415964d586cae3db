#pragma once

#include <string>
#include <vector>

namespace kestrel {

// Why WebKit's sandbox cannot start here or cannot show these paths to web processes with this home
// directory, or "". WebKit would end this program, or start no web process.
std::string sandbox_obstacle(const std::string& home, const std::vector<std::string>& paths);

}  // namespace kestrel
