// The read loop. One header, one payload, one dispatch; payloads are read into one buffer, which is
// as long as the longest.

#include "ipc/reader.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <string>

#include "base/error_line.h"
#include "ipc/dispatch.h"
#include "ipc/frame.h"
#include "ipc/frame_observer.h"
#include "ipc/link.h"
#include "log/zynlog.h"

using kestrel::error_line;

namespace {

using std::chrono::steady_clock;

thread_local bool is_reader_thread = false;

// How long the rest of a header may take. The kernel may split a host's write anywhere when the
// socket is full, and the host writes the rest when it can.
constexpr std::chrono::milliseconds kHeaderPatience{1'000};

ssize_t read_uninterrupted(int fd, std::span<char> buffer) {
    ssize_t result = 0;
    do {
        errno = 0;  // the text of a short header is that of no error
        result = read(fd, buffer.data(), buffer.size());
    } while (result == -1 && errno == EINTR);
    return result;
}

// Whether there is something to read before the deadline, be it an error or the end.
bool is_readable_until(int fd, steady_clock::time_point deadline) {
    for (;;) {
        const auto left = std::max(deadline - steady_clock::now(), steady_clock::duration::zero());
        const auto milliseconds = std::chrono::ceil<std::chrono::milliseconds>(left).count();
        pollfd readable{fd, POLLIN, 0};
        const int ready = poll(&readable, 1, static_cast<int>(milliseconds));
        if (ready != -1 || errno != EINTR) return ready != 0;
    }
}

void report_host_gone() {
    __ZynTrace(kestrel::kLogWebkit, kestrel::kError, "", "", 0,
               "Host closed the connection, exiting thread\n");
}

void report_bad_header(int error) {
    const std::string reason = std::strerror(error);
    error_line(
        "webkit_client::recvMessage Error in reading first four ints in recvMessage"
        "                        in webkit_client " +
        reason + "\n");
    __ZynTrace(kestrel::kLogWebkit, kestrel::kFatal, "", "", 0,
               "Error in reading first four ints: %s\n", reason.c_str());
}

void report_bad_payload(int error) {
    const std::string reason = std::strerror(error);
    error_line(
        "webkit_client::recvMessage Error in"
        "                                    reading in webkit_client: " +
        reason + "\n");
    __ZynTrace(kestrel::kLogWebkit, kestrel::kError, "", "", 0,
               "Error in reading in webkit_client, exiting thread %s", reason.c_str());
}

bool read_header(webkit_message& header) {
    const int fd = kestrel::load_server_fd();
    std::span<char> missing(reinterpret_cast<char*>(&header), sizeof header);
    ssize_t result = read_uninterrupted(fd, missing);
    int error = errno;
    __ZynTrace(kestrel::kLogWebkit, kestrel::kVerbose, "", "", 0, "Value of server_fd %d", fd);
    if (result == 0) {
        report_host_gone();
        return false;
    }
    const auto deadline = steady_clock::now() + kHeaderPatience;
    while (result > 0) {
        missing = missing.subspan(static_cast<std::size_t>(result));
        if (missing.empty()) return true;
        if (!is_readable_until(fd, deadline)) break;
        result = read_uninterrupted(fd, missing);
        error = errno;
    }
    report_bad_header(error);
    return false;
}

bool read_payload(std::span<char> payload) {
    while (!payload.empty()) {
        const ssize_t result = read_uninterrupted(kestrel::load_server_fd(), payload);
        if (result == 0) {
            report_host_gone();
            return false;
        }
        if (result < 0) {
            report_bad_payload(errno);
            return false;
        }
        payload = payload.subspan(static_cast<std::size_t>(result));
    }
    return true;
}

// Room for the longest frame. The system gives it memory as far as it has been written to.
kestrel::Frame make_buffer() {
    return kestrel::Frame(static_cast<webkit_message*>(
        std::malloc(sizeof(webkit_message) + kestrel::kMaxInboundPayload)));
}

// Reads and dispatches one frame; false when the thread has to end.
bool receive_one(webkit_message& frame) {
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
    frame = header;
    const auto length = static_cast<std::size_t>(header.total_len_of_string);
    if (!read_payload({kestrel::payload_begin(frame), length})) return false;
    kestrel::show_to_observer(kestrel::Direction::to_page, frame);
    kestrel::dispatch_message(frame);
    return true;
}

}  // namespace

bool kestrel::on_reader_thread() { return is_reader_thread; }

void kestrel::receive_until_end() {
    const kestrel::Frame buffer = make_buffer();
    if (!buffer) {
        error_line("webkit_client::recvMessage could not malloc, failing\n");
        __ZynTrace(kestrel::kLogWebkit, kestrel::kError, "", "", 0,
                   "could not malloc %d, too less memory?", kestrel::kMaxInboundPayload);
        return;
    }
    if (kestrel::load_server_fd() == -1) {
        error_line("webkit_client::recvMessage Error in server_fd\n");
        __ZynTrace(kestrel::kLogWebkit, kestrel::kError, "", "", 0,
                   "server_fd = -1, haven't connected with server yet");
        return;
    }
    is_reader_thread = true;
    while (receive_one(*buffer)) {
    }
}
