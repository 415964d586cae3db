#pragma once

#include <cstdio>
#include <string>

namespace kestrel::logging {

// The value of the first "ID_VERSION=" of a version file, up to the end of the line; "unknown" if
// there is none. Lines are read in pieces of 127 characters.
std::string version_in(std::FILE* file);

}  // namespace kestrel::logging
