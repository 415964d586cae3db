#include "tests/webkit/scripted_host.h"

#include <glib-unix.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <system_error>

#include "tests/support/link_peer.h"
#include "tests/support/main_loop.h"

namespace kestrel::testing {
namespace {

constexpr timeval kSendPatience{10, 0};

void require(bool ok, const char* what) {
    if (!ok) throw std::system_error(errno, std::generic_category(), what);
}

}  // namespace

ScriptedHost::ScriptedHost(std::string client_directory)
    : path_(std::move(client_directory) + "/webkit_socket2") {}

ScriptedHost::~ScriptedHost() { hang_up(); }

void ScriptedHost::listen() {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path_.copy(address.sun_path, sizeof address.sun_path - 1);
    listener_ = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    require(bind(listener_, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0, "bind");
    require(::listen(listener_, 8) == 0, "listen");
    listener_source_ = g_unix_fd_add(
        listener_, G_IO_IN,
        [](int, GIOCondition, void* self) -> gboolean {
            static_cast<ScriptedHost*>(self)->accept_client();
            return G_SOURCE_CONTINUE;
        },
        this);
}

void ScriptedHost::accept_client() {
    pause();
    if (client_ != -1) close(client_);
    client_ = accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
    // A web process that does not read is a failure, and holds nothing up.
    setsockopt(client_, SOL_SOCKET, SO_SNDTIMEO, &kSendPatience, sizeof kSendPatience);
    unread_.clear();
    resume();
}

bool ScriptedHost::read_client() {
    std::array<char, 65'536> piece;
    const ssize_t got = recv(client_, piece.data(), piece.size(), MSG_DONTWAIT);
    if (got <= 0) return false;
    unread_.append(piece.data(), static_cast<std::size_t>(got));
    std::size_t at = 0;
    while (unread_.size() - at >= 16) {
        std::array<int, 4> header{};
        std::memcpy(header.data(), unread_.data() + at, sizeof header);
        const std::size_t length = sizeof header + static_cast<std::size_t>(header[3]);
        if (unread_.size() - at < length) break;
        frames_.push_back({header[0], unread_.substr(at + sizeof header, length - sizeof header)});
        at += length;
    }
    unread_.erase(0, at);
    return true;
}

bool ScriptedHost::wait_for(int type, std::size_t count) {
    return run_main_loop_until([&] {
        return std::ranges::count(frames_, type, &ReceivedFrame::type) >=
               static_cast<std::ptrdiff_t>(count);
    });
}

bool ScriptedHost::wait_for_text(int type, const std::string& text) {
    return run_main_loop_until([&] {
        return std::ranges::any_of(frames_, [&](const ReceivedFrame& frame) {
            return frame.type == type && frame.payload == text + '\0';
        });
    });
}

std::vector<ReceivedFrame> ScriptedHost::frames(int type) const {
    std::vector<ReceivedFrame> found;
    for (const ReceivedFrame& frame : frames_) {
        if (frame.type == type) found.push_back(frame);
    }
    return found;
}

void ScriptedHost::send(int type, std::initializer_list<std::string_view> strings) const {
    send_bytes(frame_bytes(type, {}, strings));
}

void ScriptedHost::send_bytes(std::string_view bytes) const {
    while (!bytes.empty()) {
        const ssize_t sent = ::send(client_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        require(sent > 0, "send");
        bytes.remove_prefix(static_cast<std::size_t>(sent));
    }
}

void ScriptedHost::hang_up() {
    pause();
    if (listener_source_ != 0) g_source_remove(listener_source_);
    listener_source_ = 0;
    if (client_ != -1) close(client_);
    if (listener_ != -1) {
        close(listener_);
        unlink(path_.c_str());
    }
    client_ = listener_ = -1;
}

void ScriptedHost::pause() {
    if (client_source_ != 0) g_source_remove(client_source_);
    client_source_ = 0;
}

void ScriptedHost::resume() {
    client_source_ = g_unix_fd_add(
        client_, G_IO_IN,
        [](int, GIOCondition, void* self) -> gboolean {
            auto* host = static_cast<ScriptedHost*>(self);
            if (host->read_client()) return G_SOURCE_CONTINUE;
            host->client_source_ = 0;
            return G_SOURCE_REMOVE;
        },
        this);
}

}  // namespace kestrel::testing
