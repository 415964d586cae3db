#include "tests/webkit/scripted_host.h"

#include <glib-unix.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "tests/support/main_loop.h"

namespace kestrel::testing {
namespace {

void remove_source(guint& source) {
    if (source != 0) g_source_remove(std::exchange(source, 0));
}

}  // namespace

ScriptedHost::ScriptedHost(std::string client_directory)
    : path_(std::move(client_directory) + "/webkit_socket2") {}

void ScriptedHost::listen() {
    listener_.emplace(path_);
    listener_source_ = g_unix_fd_add(
        listener_->fd(), G_IO_IN,
        [](int, GIOCondition, void* self) -> gboolean {
            static_cast<ScriptedHost*>(self)->accept_client();
            return G_SOURCE_CONTINUE;
        },
        this);
}

void ScriptedHost::accept_client() {
    pause();
    client_.emplace(listener_->accept());
    // Makes sending to a web process that does not read fail.
    constexpr timeval kSendPatience{10, 0};
    setsockopt(client_->fd(), SOL_SOCKET, SO_SNDTIMEO, &kSendPatience, sizeof kSendPatience);
    unread_.clear();
    resume();
}

bool ScriptedHost::read_client() {
    const std::string bytes = client_->read_available();
    unread_ += bytes;
    std::ranges::move(take_frames(unread_), std::back_inserter(frames_));
    return !bytes.empty();
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
    std::ranges::copy_if(frames_, std::back_inserter(found),
                         [&](const ReceivedFrame& frame) { return frame.type == type; });
    return found;
}

void ScriptedHost::send(int type, std::initializer_list<std::string_view> strings) const {
    send_bytes(frame_bytes(type, {}, strings));
}

void ScriptedHost::send_bytes(std::string_view bytes) const {
    if (!client_->write(bytes)) throw std::runtime_error("the web process does not read");
}

void ScriptedHost::hang_up() {
    pause();
    remove_source(listener_source_);
    client_.reset();
    if (!listener_) return;
    listener_.reset();
    unlink(path_.c_str());
}

void ScriptedHost::pause() { remove_source(client_source_); }

void ScriptedHost::resume() {
    client_source_ = g_unix_fd_add(
        client_->fd(), G_IO_IN,
        [](int, GIOCondition, void* self) -> gboolean {
            auto* host = static_cast<ScriptedHost*>(self);
            if (host->read_client()) return G_SOURCE_CONTINUE;
            host->client_source_ = 0;
            return G_SOURCE_REMOVE;
        },
        this);
}

}  // namespace kestrel::testing
