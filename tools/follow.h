#pragma once

#include <string>
#include <vector>

namespace kestrel::tools {

struct FollowOptions {
    std::string lowest_level = "VERBOSE";
    std::vector<std::string> classes;  // all, if empty
    bool json = false;
};

// Listens at the log daemon's socket and prints the received lines, until SIGINT, SIGTERM, or until
// the reader closes standard output. Throws std::runtime_error if it cannot listen.
void follow(const FollowOptions& options);

}  // namespace kestrel::tools
