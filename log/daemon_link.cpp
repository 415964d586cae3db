#include "log/daemon_link.h"

#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cstring>

#include "log/daemon_protocol.h"
#include "log/local_socket.h"
#include "log/sigpipe_ignored.h"
#include "log/zynlog_paths.h"

namespace kestrel::logging {

constinit std::atomic<bool> daemon_connected = false;

namespace {

constinit std::atomic<int> descriptor = -1;

// References to the descriptor: one by the connection and one by each thread that is writing. The
// last user closes it, so no line is written to another file that reuses the descriptor's number.
constinit std::atomic<int> references = 0;

void release() {
    if (references.fetch_sub(1) == 1) close(descriptor);
}

class DescriptorReference {
  public:
    DescriptorReference() {
        int count = references;
        while (count > 0 && !held_) held_ = references.compare_exchange_weak(count, count + 1);
    }
    ~DescriptorReference() {
        if (held_) release();
    }
    DescriptorReference(const DescriptorReference&) = delete;
    DescriptorReference& operator=(const DescriptorReference&) = delete;

    explicit operator bool() const { return held_; }

  private:
    bool held_ = false;
};

bool write_whole(int fd, std::span<const char> message) {
    return write(fd, message.data(), message.size()) == static_cast<ssize_t>(message.size());
}

bool send_hello(int fd, const char* ident) {
    const std::size_t size = sizeof(LogDaemonHello) + std::strlen(ident) + 1;
    const LogDaemonHello hello{{length_field(size), DaemonMessageType::kHello}, 0};
    std::array<char, sizeof hello + kIdentSize> message;
    std::memcpy(message.data(), &hello, sizeof hello);
    std::memcpy(message.data() + sizeof hello, ident, size - sizeof hello);
    return write_whole(fd, {message.data(), size});
}

}  // namespace

void connect_daemon(const char* ident) {
    const SigpipeIgnored sigpipe_ignored;
    FileDescriptor socket = connect_to(GetSocketFilePath());
    if (!socket.is_open() || !send_hello(socket.get(), ident)) return;
    descriptor = socket.release();
    references = 1;
    daemon_connected = true;
}

void send_to_daemon(std::span<const char> message) {
    const DescriptorReference reference;
    if (reference && !write_whole(descriptor, message)) disconnect_daemon();
}

void disconnect_daemon() {
    if (!daemon_connected.exchange(false)) return;
    shutdown(descriptor, SHUT_RDWR);
    release();
}

}  // namespace kestrel::logging
