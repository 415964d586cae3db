#include "tests/support/link_peer.h"

#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <system_error>

#include "ipc/webkit_client.h"

namespace kestrel::testing {
namespace {

// Creates the pair, assigns one end to the link and returns the host's.
int connect_link() {
    std::array<int, 2> pair{};
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, pair.data()) == -1) {
        throw std::system_error(errno, std::generic_category(), "socketpair");
    }
    webkit_client::server_fd = pair[1];
    return pair[0];
}

}  // namespace

LinkPeer::LinkPeer() : HostEnd(connect_link()) {}

LinkPeer::~LinkPeer() {
    hang_up();
    close(webkit_client::server_fd);
    webkit_client::server_fd = -1;
}

}  // namespace kestrel::testing
