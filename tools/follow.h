#pragma once

#include <string>
#include <vector>

namespace kestrel::tools {

struct FollowOptions {
    std::string lowest_level = "VERBOSE";
    std::vector<std::string> classes;  // all, if empty
    bool json = false;
};

// Listens where the log daemon would and prints the lines that come, until SIGINT or SIGTERM, or
// until nobody reads standard output. Throws std::runtime_error when it cannot listen.
void follow(const FollowOptions& options);

}  // namespace kestrel::tools
