#include "tests/workbench/wire/fake_web_process.h"

#include <sys/socket.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <system_error>
#include <utility>

#include "log/local_socket.h"
#include "tests/support/frame_bytes.h"
#include "tests/support/main_loop.h"

namespace kestrel::testing {
namespace {

void require(bool ok, const char* what) {
    if (!ok) throw std::system_error(errno, std::generic_category(), what);
}

FileDescriptor connect_to(const std::string& path) {
    FileDescriptor made = logging::connect_to(path.c_str());
    require(made.is_open(), "connect");
    return made;
}

}  // namespace

FakeWebProcess::FakeWebProcess(const std::string& socket_path)
    : FakeWebProcess(connect_to(socket_path)) {}

FakeWebProcess::FakeWebProcess(FileDescriptor socket) : socket_(std::move(socket)) {}

void FakeWebProcess::announce(int pid) { write(frame_bytes(61, {std::to_string(pid)}, {})); }

void FakeWebProcess::write(std::string_view bytes) {
    run_main_loop_until([&] {
        const ssize_t sent =
            send(socket_.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
        if (sent > 0) bytes.remove_prefix(static_cast<std::size_t>(sent));
        return bytes.empty() || (sent == -1 && errno != EAGAIN);
    });
}

std::string FakeWebProcess::read_frame() {
    if (!read_until(16)) return "";
    int length = 0;
    std::memcpy(&length, unread_.data() + 12, sizeof length);
    const std::size_t size = 16 + static_cast<std::size_t>(length);
    if (!read_until(size)) return "";
    std::string frame = unread_.substr(0, size);
    unread_.erase(0, size);
    return frame;
}

bool FakeWebProcess::is_quiet() {
    run_main_loop_until_idle();
    read_what_is_there();
    return unread_.empty() && !has_ended_;
}

bool FakeWebProcess::sees_end() {
    return run_main_loop_until([this] {
               read_what_is_there();
               return has_ended_ || !unread_.empty();
           }) &&
           unread_.empty();
}

bool FakeWebProcess::read_until(std::size_t size) {
    return run_main_loop_until([&] {
               read_what_is_there();
               return has_ended_ || unread_.size() >= size;
           }) &&
           unread_.size() >= size;
}

void FakeWebProcess::read_what_is_there() {
    std::array<char, 65'536> piece;
    ssize_t got = 0;
    while ((got = recv(socket_.get(), piece.data(), piece.size(), MSG_DONTWAIT)) > 0) {
        unread_.append(piece.data(), static_cast<std::size_t>(got));
    }
    has_ended_ = got == 0 || errno != EAGAIN;
}

std::pair<FileDescriptor, FileDescriptor> socket_pair() {
    std::array<int, 2> ends{};
    require(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) == 0, "socketpair");
    return {FileDescriptor(ends[0]), FileDescriptor(ends[1])};
}

}  // namespace kestrel::testing
