#include "tests/support/listening_host.h"

#include <sys/socket.h>
#include <sys/un.h>

#include <cerrno>
#include <system_error>

namespace kestrel::testing {

ListeningHost::ListeningHost(const std::string& path, int queue)
    : socket_(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    if (bind(fd(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == -1 ||
        listen(fd(), queue) == -1) {
        throw std::system_error(errno, std::generic_category(), path);
    }
}

HostEnd ListeningHost::accept() const {
    if (!is_readable(fd())) return HostEnd(-1);
    return HostEnd(accept4(fd(), nullptr, nullptr, SOCK_CLOEXEC));
}

}  // namespace kestrel::testing
