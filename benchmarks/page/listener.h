#pragma once

#include <string>

namespace kestrel::bench {

// Ends the program, and says why, unless `ok`; errno tells more.
void require(bool ok, const char* what);

// A socket that listens at `path`.
int listen_at(const std::string& path);

}  // namespace kestrel::bench
