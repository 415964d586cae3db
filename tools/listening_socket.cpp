#include "tools/listening_socket.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <stdexcept>
#include <system_error>

#include "program/translation.h"

namespace kestrel::tools {
namespace {

FileDescriptor new_socket() {
    FileDescriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    if (!socket.is_open()) throw std::system_error(errno, std::generic_category(), "socket");
    return socket;
}

sockaddr_un address_of(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.empty())
        throw std::runtime_error(translate("there is no home directory to listen in"));
    if (path.size() >= sizeof address.sun_path) {
        throw std::runtime_error(formatted(translate("%s is too long for a socket"), path.c_str()));
    }
    path.copy(address.sun_path, path.size());
    return address;
}

// A listener whose queue is full answers too, with EAGAIN.
bool somebody_listens(const sockaddr_un& address) {
    const FileDescriptor probe = new_socket();
    return connect(probe.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 ||
           errno == EAGAIN;
}

void make_way(const std::string& path, const sockaddr_un& address) {
    struct stat file {};
    if (lstat(path.c_str(), &file) == -1) return;
    if (!S_ISSOCK(file.st_mode)) {
        throw std::runtime_error(formatted(translate("%s is not a socket"), path.c_str()));
    }
    if (somebody_listens(address)) {
        throw std::runtime_error(formatted(
            translate("a log daemon or another viewer already listens at %s"), path.c_str()));
    }
    if (errno == ECONNREFUSED) unlink(path.c_str());
}

}  // namespace

ListeningSocket::ListeningSocket(std::string path) : path_(std::move(path)), socket_(new_socket()) {
    const sockaddr_un address = address_of(path_);
    make_way(path_, address);
    const mode_t previous = umask(0077);
    const int result =
        bind(socket_.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address);
    const int error = errno;
    umask(previous);
    if (result == -1) throw std::system_error(error, std::generic_category(), path_);
    stat(path_.c_str(), &file_);
    if (listen(socket_.get(), SOMAXCONN) == -1) {
        throw std::system_error(errno, std::generic_category(), path_);
    }
}

ListeningSocket::~ListeningSocket() {
    if (is_ours()) unlink(path_.c_str());
}

bool ListeningSocket::is_ours() const {
    struct stat file {};
    return lstat(path_.c_str(), &file) == 0 && file.st_ino == file_.st_ino &&
           file.st_dev == file_.st_dev;
}

FileDescriptor ListeningSocket::accept() const {
    return FileDescriptor(accept4(fd(), nullptr, nullptr, SOCK_CLOEXEC));
}

}  // namespace kestrel::tools
