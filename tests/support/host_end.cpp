#include "tests/support/host_end.h"

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstring>

namespace kestrel::testing {

bool is_readable(int fd, int milliseconds) {
    pollfd waiting{fd, POLLIN, 0};
    return poll(&waiting, 1, milliseconds) == 1;
}

std::string HostEnd::read(std::size_t size) const {
    std::string bytes(size, '\0');
    std::size_t filled = 0;
    while (filled < size && is_readable(fd_, 10'000)) {
        const ssize_t got = ::read(fd_, bytes.data() + filled, size - filled);
        if (got <= 0) break;
        filled += static_cast<std::size_t>(got);
    }
    bytes.resize(filled);
    return bytes;
}

std::string HostEnd::read_frame() const {
    std::string bytes = read(16);
    if (bytes.size() < 16) return bytes;
    int length = 0;
    std::memcpy(&length, bytes.data() + 12, sizeof length);
    return bytes + read(static_cast<std::size_t>(length));
}

bool HostEnd::is_quiet() const { return !is_readable(fd_, 0); }

void HostEnd::write(std::string_view bytes) const {
    while (!bytes.empty()) {
        const ssize_t written = send(fd_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (written <= 0) return;
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
}

void HostEnd::hang_up() {
    if (fd_ != -1) close(fd_);
    fd_ = -1;
}

}  // namespace kestrel::testing
