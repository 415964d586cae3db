#include "benchmarks/page/echo.h"

#include <sys/socket.h>
#include <unistd.h>

#include <array>

#include "benchmarks/unix_socket.h"

namespace kestrel::bench {

Echo::Echo(const std::string& socket_path)
    : path_(socket_path), listener_(waiting_socket(path_)), thread_(&Echo::serve, this) {}

Echo::~Echo() {
    shutdown(listener_, SHUT_RDWR);
    if (peer_ != -1) shutdown(peer_, SHUT_RDWR);
    thread_.join();
    close(listener_);
    unlink(path_.c_str());
}

void Echo::serve() {
    peer_ = accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
    std::array<char, 8'192> bytes;
    for (;;) {
        const ssize_t got = read(peer_, bytes.data(), bytes.size());
        if (got <= 0) break;
        const ssize_t sent = send(peer_, bytes.data(), static_cast<std::size_t>(got), MSG_NOSIGNAL);
        if (sent != got) break;
    }
    close(peer_.exchange(-1));
}

}  // namespace kestrel::bench
