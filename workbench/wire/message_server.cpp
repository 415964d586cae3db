#include "workbench/wire/message_server.h"

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

#include <cerrno>
#include <filesystem>
#include <system_error>
#include <utility>

namespace kestrel {
namespace {

// More web processes than any window starts; the limit keeps descriptors for everything else.
constexpr std::size_t kMaxConnections = 64;

sockaddr_un address_of(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, kMaxSocketPath);
    return address;
}

[[noreturn]] void fail(const std::string& what) {
    throw std::system_error(errno, std::generic_category(), what);
}

FileDescriptor make_socket() {
    FileDescriptor made(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    if (!made.is_open()) fail("socket");
    return made;
}

// Removes the socket of a host that has gone without removing it; anything else stays.
void remove_stale_socket(const std::string& path, const sockaddr_un& address) {
    const FileDescriptor probe = make_socket();
    const int result =
        connect(probe.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address);
    if (result == 0 || errno == EAGAIN) throw AddressInUse(path);
    std::error_code ignored;
    if (errno == ECONNREFUSED && std::filesystem::is_socket(path, ignored)) unlink(path.c_str());
}

FileDescriptor listen_on(const std::string& path) {
    const sockaddr_un address = address_of(path);
    remove_stale_socket(path, address);
    FileDescriptor made = make_socket();
    if (bind(made.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == -1 ||
        listen(made.get(), SOMAXCONN) == -1) {
        fail(path);
    }
    return made;
}

ino_t inode_of(const std::string& path) {
    struct stat file {};
    return lstat(path.c_str(), &file) == 0 ? file.st_ino : 0;
}

}  // namespace

MessageServer::MessageServer(std::string path, MessageReceiver& receiver)
    : path_(std::move(path)),
      receiver_(receiver),
      socket_(listen_on(path_)),
      inode_(inode_of(path_)),
      acceptable_(EventSource::on_descriptor(socket_.get(), G_IO_IN, [this] { accept_all(); })) {}

// Another host may have put its own in the place meanwhile.
MessageServer::~MessageServer() {
    if (inode_of(path_) == inode_) unlink(path_.c_str());
}

void MessageServer::accept_all() {
    for (;;) {
        FileDescriptor client(
            accept4(socket_.get(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
        if (!client.is_open()) return;
        if (connections_.size() < kMaxConnections) {
            connections_.emplace_back(std::move(client), static_cast<MessageReceiver&>(*this));
        }
    }
}

void MessageServer::on_message(Connection& connection, const webkit_message& message) {
    receiver_.on_message(connection, message);
}

void MessageServer::on_end(Connection& connection, std::string_view why) {
    receiver_.on_end(connection, why);
    connections_.remove_if([&](const Connection& each) { return &each == &connection; });
}

}  // namespace kestrel
