#include "program/listening_socket.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>
#include <utility>

#include "program/translation.h"

namespace kestrel {
namespace {

[[noreturn]] void fail(const std::string& what) {
    throw std::system_error(errno, std::generic_category(), what);
}

FileDescriptor new_socket() {
    FileDescriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    if (!socket.is_open()) fail("socket");
    return socket;
}

sockaddr_un address_of(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path) {
        throw std::runtime_error(formatted(translate("%s is too long for a socket"), path.c_str()));
    }
    path.copy(address.sun_path, path.size());
    return address;
}

// 0, or the errno of connect().
int connect_error(const sockaddr_un& address) {
    const FileDescriptor probe = new_socket();
    return connect(probe.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0
               ? 0
               : errno;
}

void remove_stale_socket(const std::string& path, const sockaddr_un& address,
                         const std::string& in_use) {
    struct stat file {};
    if (lstat(path.c_str(), &file) == -1) return;
    if (!S_ISSOCK(file.st_mode)) {
        throw std::runtime_error(formatted(translate("%s is not a socket"), path.c_str()));
    }
    const int error = connect_error(address);
    // A listener whose queue is full answers with EAGAIN.
    if (error == 0 || error == EAGAIN) throw AddressInUse(in_use);
    if (error == ECONNREFUSED) unlink(path.c_str());
}

}  // namespace

ListeningSocket::ListeningSocket(std::string path, const std::string& in_use)
    : path_(std::move(path)), socket_(new_socket()) {
    const sockaddr_un address = address_of(path_);
    remove_stale_socket(path_, address, in_use);
    // bind() takes the permissions from the socket: the file is never accessible to others.
    if (fchmod(socket_.get(), S_IRWXU) == -1 ||
        bind(socket_.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == -1 ||
        lstat(path_.c_str(), &file_) == -1 || listen(socket_.get(), SOMAXCONN) == -1) {
        fail(path_);
    }
}

// Another listener may have replaced the file meanwhile.
ListeningSocket::~ListeningSocket() {
    if (is_ours()) unlink(path_.c_str());
}

bool ListeningSocket::is_ours() const {
    struct stat file {};
    return lstat(path_.c_str(), &file) == 0 && file.st_ino == file_.st_ino &&
           file.st_dev == file_.st_dev;
}

FileDescriptor ListeningSocket::accept() const {
    return FileDescriptor(accept4(fd(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
}

}  // namespace kestrel
