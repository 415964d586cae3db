#include "tests/support/listening_host.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace kestrel::testing {

ListeningHost::ListeningHost(const std::string& path, int queue)
    : fd_(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    if (bind(fd_, reinterpret_cast<const sockaddr*>(&address), sizeof address) == -1 ||
        listen(fd_, queue) == -1) {
        throw std::system_error(errno, std::generic_category(), path);
    }
}

ListeningHost::~ListeningHost() { close(fd_); }

HostEnd ListeningHost::accept() const {
    pollfd waiting{fd_, POLLIN, 0};
    if (poll(&waiting, 1, 5'000) != 1) return HostEnd(-1);
    return HostEnd(accept4(fd_, nullptr, nullptr, SOCK_CLOEXEC));
}

}  // namespace kestrel::testing
