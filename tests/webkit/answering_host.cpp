// A host as a program: answering-host SOCKET RECORD. Prints a line when it listens, serves one web
// process at a time and appends each frame to the file RECORD. It answers setItem by calling the
// page's `answered` with the item's key, and sendAction with many answers, which call `answered`
// with 0, 1 and so on: "flood COUNT" writes as much as the socket takes, and more when the web
// process has read that; "split COUNT" waits within each header until the first part has been read.
#include <linux/sockios.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>

#include "tests/support/frame_bytes.h"
#include "tests/support/listening_host.h"

namespace kestrel::testing {
namespace {

constexpr int kSetItem = 19;
constexpr int kSendAction = 5;
constexpr std::size_t kHeader = 16;
constexpr int kForever = -1;

std::string answer_with(const std::string& key) {
    return frame_bytes(1, {}, {"(() => answered(" + key + "))"});
}

// The kernel has no event for this.
void wait_until_read(int fd) {
    constexpr int kMillisecond = 1;
    int unread = 1;
    while (ioctl(fd, SIOCOUTQ, &unread) == 0 && unread > 0) poll(nullptr, 0, kMillisecond);
}

// As a host with a main loop, never blocks in a write. It has more to write than the socket takes,
// so the kernel splits its writes at any byte.
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

bool split(const HostEnd& client, int count) {
    for (int key = 0; key < count; ++key) {
        const std::string answer = answer_with(std::to_string(key));
        const std::size_t size = static_cast<std::size_t>(key) % (kHeader - 1) + 1;
        if (!client.write(answer.substr(0, size))) return false;
        wait_until_read(client.fd());
        if (!client.write(answer.substr(size))) return false;
    }
    return true;
}

bool answer(const HostEnd& client, int type, const std::string& text) {
    if (type == kSetItem) return client.write(answer_with(text));
    if (type == kSendAction && text.starts_with("flood ")) {
        return flood(client.fd(), std::stoi(text.substr(6)));
    }
    if (type == kSendAction && text.starts_with("split ")) {
        return split(client, std::stoi(text.substr(6)));
    }
    return true;
}

void serve(const HostEnd& client, std::FILE* record) {
    for (;;) {
        is_readable(client.fd(), kForever);
        const std::string frame = client.read_frame();
        if (frame.size() < kHeader) return;
        std::fwrite(frame.data(), 1, frame.size(), record);
        std::fflush(record);
        int type = 0;
        std::memcpy(&type, frame.data(), sizeof type);
        if (!answer(client, type, frame.c_str() + kHeader)) return;
    }
}

}  // namespace
}  // namespace kestrel::testing

int main(int argc, char** argv) {
    using namespace kestrel::testing;
    if (argc != 3) return 2;
    const ListeningHost host(argv[1]);
    std::FILE* const record = std::fopen(argv[2], "ae");
    if (record == nullptr) return 1;
    std::puts("listening");
    std::fflush(stdout);
    for (;;) {
        is_readable(host.fd(), kForever);
        serve(host.accept(), record);
    }
}
