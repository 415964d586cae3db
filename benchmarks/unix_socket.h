// AF_UNIX sockets. Errors end the program.
#pragma once

#include <sys/socket.h>

#include <string>

namespace kestrel::bench {

// A socket bound to `path`; listens if `type` is SOCK_STREAM.
int bound_socket(const std::string& path, int type = SOCK_STREAM);

// A stream socket connected to `path`.
int connected_socket(const std::string& path);

}  // namespace kestrel::bench
