#pragma once

#include <cstdio>
#include <string>

namespace kestrel::logging {

// What follows the version's key in the first line of a version file that has it, to the line's
// end; "unknown" if none has. A line counts in pieces of 127 characters.
std::string version_in(std::FILE* file);

}  // namespace kestrel::logging
