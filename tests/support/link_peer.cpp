#include "tests/support/link_peer.h"

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cstring>
#include <system_error>

#include "ipc/webkit_client.h"

namespace kestrel::testing {
namespace {

bool is_readable(int fd, int milliseconds) {
    pollfd waiting{fd, POLLIN, 0};
    return poll(&waiting, 1, milliseconds) == 1;
}

std::string int32_bytes(int value) {
    std::string bytes;
    for (int shift = 0; shift < 32; shift += 8) {
        bytes += static_cast<char>((static_cast<unsigned>(value) >> shift) & 0xffU);
    }
    return bytes;
}

}  // namespace

LinkPeer::LinkPeer() {
    std::array<int, 2> pair{};
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, pair.data()) == -1) {
        throw std::system_error(errno, std::generic_category(), "socketpair");
    }
    fd_ = pair[0];
    webkit_client::server_fd = pair[1];
}

LinkPeer::~LinkPeer() {
    hang_up();
    close(webkit_client::server_fd);
    webkit_client::server_fd = -1;
}

std::string LinkPeer::read(std::size_t size) const {
    std::string bytes;
    while (bytes.size() < size && is_readable(fd_, 5'000)) {
        std::string piece(size - bytes.size(), '\0');
        const ssize_t got = ::read(fd_, piece.data(), piece.size());
        if (got <= 0) break;
        bytes.append(piece, 0, static_cast<std::size_t>(got));
    }
    return bytes;
}

std::string LinkPeer::read_frame() const {
    std::string bytes = read(16);
    if (bytes.size() < 16) return bytes;
    int length = 0;
    std::memcpy(&length, bytes.data() + 12, sizeof length);
    return bytes + read(static_cast<std::size_t>(length));
}

bool LinkPeer::is_quiet() const { return !is_readable(fd_, 0); }

void LinkPeer::write(std::string_view bytes) const {
    while (!bytes.empty()) {
        const ssize_t written = send(fd_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (written <= 0) return;
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
}

void LinkPeer::hang_up() {
    if (fd_ != -1) close(fd_);
    fd_ = -1;
}

std::string frame_bytes(int type, std::initializer_list<std::string_view> ints,
                        std::initializer_list<std::string_view> strings) {
    std::string payload;
    for (const std::string_view item : ints) payload.append(item).push_back('\0');
    for (const std::string_view item : strings) payload.append(item).push_back('\0');
    return int32_bytes(type) + int32_bytes(static_cast<int>(ints.size())) +
           int32_bytes(static_cast<int>(strings.size())) +
           int32_bytes(static_cast<int>(payload.size())) + payload;
}

}  // namespace kestrel::testing
