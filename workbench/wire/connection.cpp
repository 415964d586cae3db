#include "workbench/wire/connection.h"

#include <sys/socket.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <utility>

namespace kestrel {

Connection::Connection(FileDescriptor socket, MessageReceiver& receiver)
    : socket_(std::move(socket)),
      receiver_(receiver),
      readable_(EventSource::on_descriptor(socket_.get(), G_IO_IN, [this] { read(); })) {}

void Connection::send(Frame frame) {
    if (!frame) return;
    const std::size_t size = bytes_of(*frame).size();
    queue(std::move(frame), size);
}

void Connection::send_beginning(Frame frame, std::size_t size) {
    if (frame) queue(std::move(frame), size);
    is_silent_ = true;
}

void Connection::queue(Frame frame, std::size_t size) {
    if (is_silent_ || !shutdown_reason_.empty()) return;
    queued_bytes_ += size;
    queue_.push_back({std::move(frame), size});
    if (queued_bytes_ > kMaxQueuedBytes) {
        shut_down("does not read what it is sent");
    } else if (!writable_.is_active()) {
        write_queued();
    }
}

void Connection::write_queued() {
    while (!queue_.empty()) {
        // The extension does not accept a header in pieces; a Unix socket takes at least a whole
        // header or nothing.
        const Queued& first = queue_.front();
        const std::span<const char> rest =
            bytes_of(*first.frame).first(first.size).subspan(written_of_first_);
        const ssize_t written =
            ::send(socket_.get(), rest.data(), rest.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
        if (written == -1) {
            if (errno == EINTR) continue;
            if (errno == EAGAIN) break;
            shut_down(std::strerror(errno));
            return;
        }
        written_of_first_ += static_cast<std::size_t>(written);
        queued_bytes_ -= static_cast<std::size_t>(written);
        if (static_cast<std::size_t>(written) == rest.size()) {
            queue_.pop_front();
            written_of_first_ = 0;
        }
    }
    if (queue_.empty()) {
        writable_.remove();
    } else if (!writable_.is_active()) {
        writable_ = EventSource::on_descriptor(socket_.get(), G_IO_OUT, [this] { write_queued(); });
    }
}

void Connection::read() {
    std::array<char, 65'536> piece;
    const ssize_t got = recv(socket_.get(), piece.data(), piece.size(), MSG_DONTWAIT);
    if (got == -1 && (errno == EAGAIN || errno == EINTR)) return;
    if (got <= 0) {
        receiver_.on_end(*this, end_reason(got, errno));
        return;
    }
    std::span<const char> bytes(piece.data(), static_cast<std::size_t>(got));
    while (const Frame frame = assembler_.next(bytes)) receiver_.on_message(*this, *frame);
    if (!assembler_.fault().empty()) {
        receiver_.on_end(*this, "sent " + std::string(assembler_.fault()));
    }
}

void Connection::shut_down(std::string why) {
    shutdown_reason_ = std::move(why);
    queue_.clear();
    writable_.remove();
    shutdown(socket_.get(), SHUT_RDWR);
}

std::string Connection::end_reason(ssize_t result, int error) const {
    if (!shutdown_reason_.empty()) return shutdown_reason_;
    if (result == -1 && error != ECONNRESET) return std::strerror(error);
    return assembler_.is_inside_frame() ? "closed in the middle of a message" : "closed";
}

}  // namespace kestrel
