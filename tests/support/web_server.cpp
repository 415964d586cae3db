#include "tests/support/web_server.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <array>
#include <cerrno>
#include <string_view>
#include <system_error>

namespace kestrel::testing {
namespace {

constexpr std::string_view kEndOfHeaders = "\r\n\r\n";

std::size_t announced_length(const std::string& headers) {
    constexpr std::string_view kName = "\r\nContent-Length: ";
    const std::size_t found = headers.find(kName);
    return found == std::string::npos ? 0 : std::stoul(headers.substr(found + kName.size()));
}

bool is_whole(const std::string& request) {
    const std::size_t end = request.find(kEndOfHeaders);
    return end != std::string::npos &&
           request.size() >= end + kEndOfHeaders.size() + announced_length(request);
}

std::string read_request(int socket) {
    std::string request;
    std::array<char, 65'536> piece;
    while (!is_whole(request)) {
        const ssize_t got = recv(socket, piece.data(), piece.size(), 0);
        if (got <= 0) break;
        request.append(piece.data(), static_cast<std::size_t>(got));
    }
    return request;
}

void write_all(int socket, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = ::send(socket, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (written <= 0) break;
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
}

int listening_socket() {
    const int fd = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (bind(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) == -1 ||
        listen(fd, SOMAXCONN) == -1) {
        throw std::system_error(errno, std::generic_category(), "web server");
    }
    return fd;
}

}  // namespace

WebServer::WebServer(Answer answer)
    : answer_(std::move(answer)), socket_(listening_socket()), thread_([this] { serve(); }) {}

WebServer::~WebServer() {
    shutdown(socket_.get(), SHUT_RDWR);  // ends accept
    thread_.join();
}

std::string WebServer::url(const std::string& path) const {
    sockaddr_in address{};
    socklen_t size = sizeof address;
    getsockname(socket_.get(), reinterpret_cast<sockaddr*>(&address), &size);
    return "http://127.0.0.1:" + std::to_string(ntohs(address.sin_port)) + path;
}

std::vector<std::string> WebServer::requests() const {
    const std::lock_guard lock(mutex_);
    return requests_;
}

void WebServer::serve() {
    for (;;) {
        FileDescriptor connection(accept4(socket_.get(), nullptr, nullptr, SOCK_CLOEXEC));
        if (connection.get() == -1) return;
        const std::string request = read_request(connection.get());
        {
            const std::lock_guard lock(mutex_);
            requests_.push_back(request);
        }
        const Saying saying = answer_(request);
        write_all(connection.get(), saying.bytes);
        if (!saying.hangs_up) silent_.push_back(std::move(connection));
    }
}

}  // namespace kestrel::testing
