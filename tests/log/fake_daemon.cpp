#include "tests/log/fake_daemon.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <stdexcept>
#include <system_error>

#include "tests/log/bytes.h"
#include "tests/log/machine.h"

namespace kestrel::testing {

std::string DaemonConnection::read_message() const {
    const std::string length = read(2);
    if (length.size() < 2) return length;
    return length + read(2 + u16_at(length, 0));
}

bool DaemonConnection::is_closed() const {
    char byte = 0;
    return is_readable(fd(), 10'000) && recv(fd(), &byte, 1, MSG_PEEK) == 0;
}

FakeDaemon::FakeDaemon() : FakeDaemon(client_directory() + "/.zynlogsocket") {}

FakeDaemon::FakeDaemon(const std::string& path)
    : path_(path), fd_(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    if (bind(fd_, reinterpret_cast<const sockaddr*>(&address), sizeof address) == -1 ||
        listen(fd_, 8) == -1) {
        throw std::system_error(errno, std::generic_category(), path);
    }
}

FakeDaemon::~FakeDaemon() {
    close(fd_);
    unlink(path_.c_str());
}

DaemonConnection FakeDaemon::accept() const {
    if (!is_readable(fd_, 10'000)) throw std::runtime_error("no process has connected");
    return DaemonConnection(accept4(fd_, nullptr, nullptr, SOCK_CLOEXEC));
}

bool FakeDaemon::is_quiet() const { return !is_readable(fd_, 0); }

}  // namespace kestrel::testing
