#include "benchmarks/page/listener.h"

#include <sys/socket.h>
#include <sys/un.h>

#include <cstdio>
#include <cstdlib>

namespace kestrel::bench {

void require(bool ok, const char* what) {
    if (ok) return;
    std::perror(what);
    std::exit(EXIT_FAILURE);
}

int listen_at(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    const int fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    require(bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0, "bind");
    require(listen(fd, 8) == 0, "listen");
    return fd;
}

}  // namespace kestrel::bench
