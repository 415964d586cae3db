// A host in a process of its own: answering-host SOCKET RECORD. Serves web processes one after the
// other and appends each frame to the file RECORD. It answers setItem by calling the page's
// `answered` with the item's key, and sendAction with many answers, which call `answered` with 0, 1
// and so on: "flood COUNT" writes as much as the socket takes, and again when the web process has
// read that; "split COUNT" pauses within each header until it has read the piece.
#include <linux/sockios.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>
#include <string_view>

#include "tests/support/frame_bytes.h"

namespace {

constexpr int kSetItem = 19;
constexpr int kSendAction = 5;
constexpr std::size_t kHeader = 16;

// Being stopped cuts reads and writes short, as a signal does.
bool read_whole(int fd, char* to, std::size_t size) {
    while (size > 0) {
        const ssize_t got = recv(fd, to, size, 0);
        if (got == -1 && errno == EINTR) continue;
        if (got <= 0) return false;
        to += got;
        size -= static_cast<std::size_t>(got);
    }
    return true;
}

bool write_whole(int fd, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t sent = send(fd, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (sent == -1 && errno == EINTR) continue;
        if (sent <= 0) return false;
        bytes.remove_prefix(static_cast<std::size_t>(sent));
    }
    return true;
}

std::string answer_with(const std::string& key) {
    return kestrel::testing::frame_bytes(1, {}, {"(() => answered(" + key + "))"});
}

// The kernel announces nothing when the peer has read.
void wait_until_read(int fd) {
    constexpr int kMillisecond = 1;
    int unread = 1;
    while (ioctl(fd, SIOCOUTQ, &unread) == 0 && unread > 0) poll(nullptr, 0, kMillisecond);
}

// As a host with a main loop, which never waits in a write. It has more to write than the socket
// takes, so the kernel splits its writes anywhere.
bool flood(int fd, int count) {
    constexpr std::size_t kQueued = 400'000;
    std::string queue;
    for (int key = 0; key < count || !queue.empty();) {
        while (key < count && queue.size() < kQueued) queue += answer_with(std::to_string(key++));
        const ssize_t sent = send(fd, queue.data(), queue.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
        if (sent == -1 && errno != EAGAIN && errno != EINTR) return false;
        if (sent > 0) queue.erase(0, static_cast<std::size_t>(sent));
        if (!queue.empty()) wait_until_read(fd);
    }
    return true;
}

bool split(int fd, int count) {
    for (int key = 0; key < count; ++key) {
        const std::string answer = answer_with(std::to_string(key));
        const std::size_t size = static_cast<std::size_t>(key) % (kHeader - 1) + 1;
        if (!write_whole(fd, answer.substr(0, size))) return false;
        wait_until_read(fd);
        if (!write_whole(fd, answer.substr(size))) return false;
    }
    return true;
}

bool answer(int fd, int type, const std::string& text) {
    if (type == kSetItem) return write_whole(fd, answer_with(text));
    if (type == kSendAction && text.starts_with("flood "))
        return flood(fd, std::stoi(text.substr(6)));
    if (type == kSendAction && text.starts_with("split "))
        return split(fd, std::stoi(text.substr(6)));
    return true;
}

void serve(int fd, std::FILE* record) {
    std::array<int, 4> header{};
    std::string frame;
    for (;;) {
        if (!read_whole(fd, reinterpret_cast<char*>(header.data()), sizeof header)) return;
        frame.resize(sizeof header + static_cast<std::size_t>(header[3]));
        std::memcpy(frame.data(), header.data(), sizeof header);
        if (!read_whole(fd, frame.data() + sizeof header, frame.size() - sizeof header)) return;
        std::fwrite(frame.data(), 1, frame.size(), record);
        std::fflush(record);
        if (!answer(fd, header[0], frame.c_str() + sizeof header)) return;
    }
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) return 2;
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    // Takes its name when it listens: whoever sees it can connect.
    const std::string unfinished = std::string(argv[1]) + ".new";
    unfinished.copy(address.sun_path, sizeof address.sun_path - 1);
    const int listener = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    std::FILE* const record = std::fopen(argv[2], "ae");
    if (record == nullptr ||
        bind(listener, reinterpret_cast<sockaddr*>(&address), sizeof address) == -1 ||
        listen(listener, 8) == -1 || std::rename(unfinished.c_str(), argv[1]) == -1) {
        std::perror(argv[1]);
        return 1;
    }
    for (;;) {
        const int client = accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
        if (client == -1) continue;
        serve(client, record);
        close(client);
    }
}
