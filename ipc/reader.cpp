// The read loop. One header, one payload, one dispatch; the block that the payload is read into is
// kept from frame to frame and grows to the largest frame seen.

#include "ipc/reader.h"

#include <pthread.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>

#include "ipc/error_line.h"
#include "ipc/frame.h"
#include "ipc/incoming_message.h"
#include "ipc/link.h"
#include "ipc/wire_trace.h"
#include "log/zynlog.h"

using kestrel::error_line;

namespace {

thread_local bool is_reader_thread = false;

// A peer that closes shows as end of stream, or as a reset when it left bytes of ours unread.
bool is_host_gone(ssize_t result, int error) {
    return result == 0 || (result == -1 && error == ECONNRESET);
}

ssize_t read_uninterrupted(int fd, void* buffer, std::size_t size) {
    ssize_t result = 0;
    do {
        errno = 0;  // a short read is reported with it, too
        result = read(fd, buffer, size);
    } while (result == -1 && errno == EINTR);
    return result;
}

void report_host_gone() {
    __ZynTrace(kestrel::kLogWebkit, kestrel::kError, "", "", 0,
               "Host closed the connection, exiting thread\n");
}

bool read_header(webkit_message& header) {
    const int fd = kestrel::load_server_fd();
    const ssize_t result = read_uninterrupted(fd, &header, sizeof header);
    const int error = errno;
    __ZynTrace(kestrel::kLogWebkit, kestrel::kVerbose, "", "", 0, "Value of server_fd %d", fd);
    if (result == sizeof header) return true;
    if (is_host_gone(result, error)) {
        report_host_gone();
        return false;
    }
    const std::string reason = std::strerror(error);
    error_line(
        "webkit_client::recvMessage Error in reading first four ints in recvMessage"
        "                        in webkit_client " +
        reason + "\n");
    __ZynTrace(kestrel::kLogWebkit, kestrel::kFatal, "", "", 0,
               "Error in reading first four ints: %s\n", reason.c_str());
    return false;
}

// What has come of the payload is taken apart while the host writes the rest.
bool read_payload(std::span<char> payload, kestrel::IncomingMessage& message) {
    while (!payload.empty()) {
        const ssize_t result =
            read_uninterrupted(kestrel::load_server_fd(), payload.data(), payload.size());
        if (is_host_gone(result, errno)) {
            report_host_gone();
            return false;
        }
        if (result < 0) {
            const std::string reason = std::strerror(errno);
            error_line(
                "webkit_client::recvMessage Error in"
                "                                    reading in webkit_client: " +
                reason + "\n");
            __ZynTrace(kestrel::kLogWebkit, kestrel::kError, "", "", 0,
                       "Error in reading in webkit_client, exiting thread %s", reason.c_str());
            return false;
        }
        const auto length = static_cast<std::size_t>(result);
        message.take(payload.first(length));
        payload = payload.subspan(length);
    }
    return true;
}

// The block that frames are read into.
class FrameBuffer {
  public:
    // Room for a frame with this payload, or null when memory is out. The content is lost.
    webkit_message* with_room_for(std::size_t payload) {
        if (!block_ || payload > capacity_) {
            block_.reset();
            capacity_ = std::max(payload, kSmallest);
            block_.reset(
                static_cast<webkit_message*>(std::malloc(sizeof(webkit_message) + capacity_)));
        }
        return block_.get();
    }

  private:
    static constexpr std::size_t kSmallest = 4'096;
    kestrel::Frame block_;
    std::size_t capacity_ = 0;
};

// Reads and dispatches one frame; false when the thread has to end.
bool receive_one(FrameBuffer& buffer) {
    webkit_message header{};
    if (!read_header(header)) return false;
    if (header.total_len_of_string < 0 ||
        header.total_len_of_string > kestrel::kMaxInboundPayload) {
        __ZynTrace(kestrel::kLogWebkit, kestrel::kFatal, "", "", 0, "BUFSIZE VALUE: %d",
                   kestrel::kMaxInboundPayload);
        __ZynTrace(kestrel::kLogWebkit, kestrel::kFatal, "", "", 0,
                   "s->total_len_of_string is more than the capacity BUFSIZE VALUE, exiting "
                   "thread \n");
        return false;
    }
    const auto length = static_cast<std::size_t>(header.total_len_of_string);
    webkit_message* const frame = buffer.with_room_for(length);
    if (frame == nullptr) {
        error_line("webkit_client::recvMessage could not malloc, failing\n");
        __ZynTrace(kestrel::kLogWebkit, kestrel::kError, "", "", 0,
                   "could not malloc %d, too less memory?", kestrel::kMaxInboundPayload);
        return false;
    }
    *frame = header;
    kestrel::IncomingMessage message(header);
    if (!read_payload({kestrel::payload_begin(*frame), length}, message)) return false;
    kestrel::trace_frame(kestrel::Direction::to_page, *frame);
    message.dispatch();
    return true;
}

void receive_until_end() {
    if (kestrel::load_server_fd() == -1) {
        error_line("webkit_client::recvMessage Error in server_fd\n");
        __ZynTrace(kestrel::kLogWebkit, kestrel::kError, "", "", 0,
                   "server_fd = -1, haven't connected with server yet");
        return;
    }
    is_reader_thread = true;
    FrameBuffer buffer;
    while (receive_one(buffer)) {
    }
}

}  // namespace

bool kestrel::on_reader_thread() { return is_reader_thread; }

void webkit_client::recvMessage() {
    receive_until_end();
    pthread_exit(nullptr);
}

void webkit_client::processMessage(webkit_message*& message) {
    kestrel::IncomingMessage incoming(*message);
    incoming.take(kestrel::payload_of(*message));
    incoming.dispatch();
}
