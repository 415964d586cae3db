#include "ipc/webkit_client.h"

#include <fcntl.h>
#include <poll.h>
#include <pthread.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <memory>
#include <string>

#include "base/error_line.h"
#include "base/never_destroyed.h"
#include "ipc/dispatch.h"
#include "ipc/frame_builder.h"
#include "ipc/link.h"
#include "ipc/reader.h"
#include "ipc/send.h"
#include "log/zynlog.h"

using kestrel::error_line;

constinit int webkit_client::server_fd = -1;
constinit webkit_client::InboundHandler* webkit_client::func_array = nullptr;
constinit std::mutex webkit_client::mu;

[[gnu::visibility("default")]] kestrel::NeverDestroyed<std::condition_variable> signal_storage asm(
    "_ZN13webkit_client6signalE");

constinit std::mutex kestrel::send_lock;

namespace {

constexpr int kFullQueueMilliseconds = 20;

using SocketPath = std::unique_ptr<char, kestrel::FreeDeleter>;

// The page does not wait while its calls fit here. The kernel grants no more than
// net.core.wmem_max, on many systems room for some 550 short calls.
void ask_for_send_buffer(int fd) {
    setsockopt(fd, SOL_SOCKET, SO_SNDBUF, &kestrel::kSendBuffer, sizeof kestrel::kSendBuffer);
}

// `path` has been checked to fit.
sockaddr_un address_of(const char* path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, path, kestrel::kMaxSocketPath);
    return address;
}

// The socket is still non-blocking: with a full queue of the host, connect would block, and page
// calls would wait for the lock. This waits for room without the lock.
bool connect_once(int fd, const sockaddr_un& address, std::unique_lock<std::mutex>& sending) {
    while (connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) == -1) {
        if (errno == EAGAIN) {
            sending.unlock();
            poll(nullptr, 0, kFullQueueMilliseconds);
            sending.lock();
        } else if (errno != EINTR) {
            return false;
        }
    }
    fcntl(fd, F_SETFL, fcntl(fd, F_GETFL) & ~O_NONBLOCK);
    return true;
}

// Takes the lock for each attempt and keeps it on success, so that no other frame is sent before
// the announcement.
bool connect_with_retries(int fd, const sockaddr_un& address,
                          std::unique_lock<std::mutex>& sending) {
    sending.lock();
    bool connected = connect_once(fd, address, sending);
    for (int retries = kestrel::kConnectRetries; !connected && retries > 0;) {
        sending.unlock();
        sleep(kestrel::kConnectRetrySeconds);
        sending.lock();
        connected = connect_once(fd, address, sending);
        --retries;
        __ZynTrace(kestrel::kLogWebkit, kestrel::kInfo, "", "", 0,
                   "Failed to connect to server, trying again after %d secs, retries left : %d",
                   static_cast<int>(kestrel::kConnectRetrySeconds), retries);
    }
    return connected;
}

void announce() {
    const int pid = getpid();
    const kestrel::Frame frame =
        kestrel::build_frame(kestrel::to_host("announce"), std::array{pid}, {});
    if (frame) kestrel::write_frame(*frame);
}

}  // namespace

void webkit_client::initComm(InboundHandler* handlers, char* socket_path) {
    SocketPath path(socket_path);
    __ZynTrace(kestrel::kLogWebkit, kestrel::kInfo, "", "", 0, "+");
    func_array = handlers;
    if (!path) {
        error_line("webkit_client::initComm no socket path, not connecting\n");
        return;
    }
    if (std::strlen(path.get()) > kestrel::kMaxSocketPath) {
        error_line("webkit_client::initComm socket path over 107 bytes, not connecting\n");
        __ZynTrace(kestrel::kLogWebkit, kestrel::kError, "", "", 0,
                   "Socket path over %d bytes, not connecting: %s\n",
                   static_cast<int>(kestrel::kMaxSocketPath), path.get());
        return;
    }
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setdetachstate(&attributes, PTHREAD_CREATE_DETACHED);
    pthread_t thread{};
    const int error = pthread_create(&thread, &attributes, sinitComm, path.get());
    pthread_attr_destroy(&attributes);
    if (error == 0) {
        (void)path.release();  // the thread's now
    } else {
        __ZynTrace(kestrel::kLogWebkit, kestrel::kError, "", "", 0,
                   "Could not start the reader thread: %s\n", std::strerror(error));
    }
}

void* webkit_client::sinitComm(void* socket_path) {
    SocketPath path(static_cast<char*>(socket_path));
    std::unique_lock lock(mu);

    const int fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    kestrel::store_server_fd(fd);
    if (fd == -1) {
        error_line("Could not create socket!\n");
        __ZynTrace(kestrel::kLogWebkit, kestrel::kError, "", "", 0, "Could not create socket");
        return nullptr;
    }
    ask_for_send_buffer(fd);
    std::unique_lock sending(kestrel::send_lock, std::defer_lock);
    if (!connect_with_retries(fd, address_of(path.get()), sending)) {
        __ZynTrace(kestrel::kLogWebkit, kestrel::kError, "", "", 0,
                   "Connection error with webkit_server");
        error_line("Connection error!\n");
        return nullptr;
    }
    announce();
    sending.unlock();
    path.reset();
    lock.unlock();
    signal.notify_one();
    recvMessage();
}

void webkit_client::recvMessage() {
    kestrel::receive_until_end();
    pthread_exit(nullptr);
}

void webkit_client::processMessage(webkit_message*& message) {
    kestrel::dispatch_message(*message);
}

void webkit_client::sendMessage(webkit_message*& message) {
    if (message != nullptr) kestrel::send(*message);  // wrapMessage has said why it is null
}

void webkit_client::deinitComm() {
    __ZynTrace(kestrel::kLogWebkit, kestrel::kInfo, "", "", 0, "+");
    const int fd = kestrel::load_server_fd();
    if (fd == -1) {
        __ZynTrace(kestrel::kLogWebkit, kestrel::kWarning, "", "", 0,
                   "server_fd is already closed\n");
        return;
    }
    if (close(fd) == -1) {
        const std::string reason = std::strerror(errno);
        error_line("Could not close webkit_client::server_fd, error: " + reason + "\n");
        __ZynTrace(kestrel::kLogWebkit, kestrel::kError, "", "", 0,
                   "Could not close server_fd, error: %s\n", reason.c_str());
    }
    kestrel::store_server_fd(-1);
}
