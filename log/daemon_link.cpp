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

// The connection itself and each thread that is writing to it. The last to leave closes, so no
// line ever goes to a file that has taken over the descriptor's number.
constinit std::atomic<int> holders = 0;

void let_go() {
    if (holders.fetch_sub(1) == 1) close(descriptor);
}

class Hold {
  public:
    Hold() {
        int count = holders;
        while (count > 0 && !held_) held_ = holders.compare_exchange_weak(count, count + 1);
    }
    ~Hold() {
        if (held_) let_go();
    }
    Hold(const Hold&) = delete;
    Hold& operator=(const Hold&) = delete;

    explicit operator bool() const { return held_; }

  private:
    bool held_ = false;
};

bool write_whole(int fd, std::span<const char> message) {
    return write(fd, message.data(), message.size()) == static_cast<ssize_t>(message.size());
}

bool say_hello(int fd, const char* ident) {
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
    if (!socket.is_open() || !say_hello(socket.get(), ident)) return;
    descriptor = socket.release();
    holders = 1;
    daemon_connected = true;
}

void send_to_daemon(std::span<const char> message) {
    const Hold hold;
    if (hold && !write_whole(descriptor, message)) disconnect_daemon();
}

void disconnect_daemon() {
    if (!daemon_connected.exchange(false)) return;
    shutdown(descriptor, SHUT_RDWR);
    let_go();
}

}  // namespace kestrel::logging
