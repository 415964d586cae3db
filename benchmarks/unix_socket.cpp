#include "benchmarks/unix_socket.h"

#include <sys/un.h>

#include "benchmarks/require.h"

namespace kestrel::bench {
namespace {

using Call = int(int, const sockaddr*, socklen_t);

int socket_at(const std::string& path, int type, Call call) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    const int fd = socket(AF_UNIX, type | SOCK_CLOEXEC, 0);
    require(call(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0, path);
    return fd;
}

}  // namespace

int bound_socket(const std::string& path, int type) {
    const int fd = socket_at(path, type, bind);
    if (type == SOCK_STREAM) require(listen(fd, 8) == 0, path);
    return fd;
}

int connected_socket(const std::string& path) { return socket_at(path, SOCK_STREAM, connect); }

}  // namespace kestrel::bench
