#include "ipc/send.h"

#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "base/error_line.h"
#include "base/signals_blocked.h"
#include "ipc/frame_builder.h"
#include "ipc/frame_observer.h"
#include "ipc/link.h"
#include "log/zynlog.h"

namespace {

// Up to this size the kernel queues a frame whole or not at all; beyond it, a signal handler could
// cut the write short.
constexpr std::size_t kIndivisibleWrite = 32'768;

// MSG_NOSIGNAL: EPIPE instead of SIGPIPE, whose disposition belongs to the process.
ssize_t write_once(int fd, std::span<const char> bytes) {
    ssize_t written = 0;
    do {
        written = send(fd, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        // Programs that link the library may have put a pipe or a file into server_fd.
        if (written == -1 && errno == ENOTSOCK) written = write(fd, bytes.data(), bytes.size());
    } while (written == -1 && errno == EINTR);
    return written;
}

ssize_t write_whole(int fd, std::span<const char> bytes) {
    if (bytes.size() <= kIndivisibleWrite) return write_once(fd, bytes);
    const kestrel::SignalsBlocked blocked;
    return write_once(fd, bytes);
}

}  // namespace

void kestrel::write_frame(const webkit_message& frame) {
    // Before the write, or the host's answer could be traced first.
    show_to_observer(Direction::from_page, frame);
    const std::span<const char> bytes = bytes_of(frame);
    const ssize_t written = write_whole(load_server_fd(), bytes);
    if (written == static_cast<ssize_t>(bytes.size())) return;

    if (written > 0) {
        __ZynTrace(kLogWebkit, kFatal, "", "", 0, "Partial write, exiting, value of wrv is %d\n",
                   static_cast<int>(written));
        ZynLogShutdown();
    } else {
        __ZynTrace(kLogWebkit, kFatal, "", "", 0, "Could not write, error: %s, exiting\n",
                   std::strerror(errno));
        ZynLogShutdown();
        error_line("Error writing into the socket\n");
    }
    std::exit(-1);
}

void kestrel::send(const webkit_message& frame) {
    const std::scoped_lock lock(send_lock);
    if (load_server_fd() == -1) {
        error_line("webkit_client::sendMessage server_fd not initialized yet\n");
        __ZynTrace(kLogWebkit, kError, "", "", 0, "server_fd not initialized yet, returning");
        return;
    }
    write_frame(frame);
}

void kestrel::send(std::int32_t type, std::span<const int> ints,
                   std::span<const std::string_view> strings) {
    const Frame frame = build_frame(type, ints, strings);
    if (frame) send(*frame);
}
