#include "tests/support/host_end.h"

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>

namespace kestrel::testing {

bool is_readable(int fd, int milliseconds) {
    pollfd waiting{fd, POLLIN, 0};
    return poll(&waiting, 1, milliseconds) == 1;
}

std::string HostEnd::read(std::size_t size) const {
    std::string bytes(size, '\0');
    std::size_t filled = 0;
    while (filled < size && is_readable(fd())) {
        const ssize_t got = ::read(fd(), bytes.data() + filled, size - filled);  // a FIFO, too
        if (got == -1 && errno == EINTR) continue;
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

std::string HostEnd::read_available() const {
    std::array<char, 65'536> piece;
    const ssize_t got = recv(fd(), piece.data(), piece.size(), MSG_DONTWAIT);
    return {piece.data(), got > 0 ? static_cast<std::size_t>(got) : 0};
}

bool HostEnd::is_quiet() const { return !is_readable(fd(), 0); }

bool HostEnd::write(std::string_view bytes) const {
    while (!bytes.empty()) {
        const ssize_t written = send(fd(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (written == -1 && errno == EINTR) continue;
        if (written <= 0) return false;
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

}  // namespace kestrel::testing
