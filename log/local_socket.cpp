#include "log/local_socket.h"

#include <sys/socket.h>
#include <sys/un.h>

#include <cstring>

namespace kestrel::logging {

FileDescriptor connect_to(const char* path) {
    // An empty path would be a name in the abstract namespace, where any user may listen.
    if (*path == '\0') return FileDescriptor(-1);
    FileDescriptor fd(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    if (!fd.is_open()) return fd;

    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    // A path that fills the address needs no terminator; a longer one is truncated.
    std::memcpy(address.sun_path, path, strnlen(path, sizeof address.sun_path));
    if (connect(fd.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == -1) {
        return FileDescriptor(-1);
    }
    return fd;
}

}  // namespace kestrel::logging
