#include "benchmarks/sink.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <thread>

namespace kestrel::bench {
namespace {

using Call = int(int, const sockaddr*, socklen_t);

void require(bool ok, const std::string& path) {
    if (ok) return;
    std::perror(path.c_str());
    std::exit(EXIT_FAILURE);
}

void apply(Call call, int fd, const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    require(call(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0, path);
}

void drain(int peer) {
    std::array<char, 65'536> bytes;
    while (read(peer, bytes.data(), bytes.size()) > 0) {
    }
}

void serve(int listener) {
    for (int peer = accept(listener, nullptr, nullptr); peer != -1;
         peer = accept(listener, nullptr, nullptr)) {
        std::thread(drain, peer).detach();
    }
}

}  // namespace

Sink::Sink(const std::string& path, int type) : path_(path) {
    const int fd = socket(AF_UNIX, type | SOCK_CLOEXEC, 0);
    apply(bind, fd, path);
    if (type == SOCK_DGRAM) {
        std::thread(drain, fd).detach();
        return;
    }
    require(listen(fd, 8) == 0, path);
    std::thread(serve, fd).detach();
}

int Sink::connect_to() const {
    const int fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    apply(connect, fd, path_);
    return fd;
}

}  // namespace kestrel::bench
