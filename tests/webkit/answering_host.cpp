// A host in a process of its own: answering-host SOCKET RECORD. Serves web processes one after the
// other. Appends each frame to the file RECORD, and answers each setItem by calling the page's
// `answered` with the item's key.
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
        if (header[0] != kSetItem) continue;
        const std::string key = frame.c_str() + sizeof header;
        if (!write_whole(fd,
                         kestrel::testing::frame_bytes(1, {}, {"(() => answered(" + key + "))"})))
            return;
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
