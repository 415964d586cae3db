#pragma once

#include <sys/socket.h>

#include <string>

namespace kestrel::bench {

// Ends the program, and says why, unless `ok`; errno tells more.
void require(bool ok, const std::string& what);

// A socket that waits at `path`: for connections, if it is a stream.
int waiting_socket(const std::string& path, int type = SOCK_STREAM);

// A stream to the one that waits at `path`.
int connected_socket(const std::string& path);

}  // namespace kestrel::bench
