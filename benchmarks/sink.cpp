#include "benchmarks/sink.h"

#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <thread>

#include "benchmarks/unix_socket.h"

namespace kestrel::bench {
namespace {

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
    const int fd = bound_socket(path, type);
    std::thread(type == SOCK_DGRAM ? drain : serve, fd).detach();
}

int Sink::connect_to() const { return connected_socket(path_); }

}  // namespace kestrel::bench
