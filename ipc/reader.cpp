// The read loop. One header, one payload, one dispatch; the block that the payload is read into is
// kept from frame to frame and grows to the largest frame seen.

#include "ipc/reader.h"

#include <pthread.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <string>

#include "ipc/error_line.h"
#include "ipc/frame.h"
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

bool read_payload(std::span<char> payload) {
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
        payload = payload.subspan(static_cast<std::size_t>(result));
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
    webkit_message* message = buffer.with_room_for(length);
    if (message == nullptr) {
        error_line("webkit_client::recvMessage could not malloc, failing\n");
        __ZynTrace(kestrel::kLogWebkit, kestrel::kError, "", "", 0,
                   "could not malloc %d, too less memory?", kestrel::kMaxInboundPayload);
        return false;
    }
    *message = header;
    if (!read_payload({kestrel::payload_begin(*message), length})) return false;
    kestrel::trace_frame(kestrel::Direction::to_page, *message);
    webkit_client::processMessage(message);
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

// The strings that messages are decoded into, kept from one to the next together with their memory
// unless that has grown large; fresh ones while the kept ones are in use. Never destroyed: the
// reader outlives static destruction.
class KeptItems {
  public:
    KeptItems() : items_(spare_.exchange(nullptr)) {
        if (!items_) items_.reset(new (std::nothrow) kestrel::Items);
    }
    ~KeptItems() {
        if (!items_) return;
        std::size_t memory = 0;
        for (const std::string& text : items_->strings) memory += text.capacity();
        if (memory <= kMostMemory) delete spare_.exchange(items_.release());
    }
    KeptItems(const KeptItems&) = delete;
    KeptItems& operator=(const KeptItems&) = delete;

    // Null when memory is out.
    kestrel::Items* get() const { return items_.get(); }

  private:
    static constexpr std::size_t kMostMemory = 8UL * 1024 * 1024;
    static constinit inline std::atomic<kestrel::Items*> spare_ = nullptr;
    std::unique_ptr<kestrel::Items> items_;
};

void report_dropped(std::int32_t type, const char* reason) {
    __ZynTrace(kestrel::kLogWebkit, kestrel::kError, "", "", 0,
               "Dropped a message of type %d: %s\n", type, reason);
}

}  // namespace

bool kestrel::on_reader_thread() { return is_reader_thread; }

void webkit_client::recvMessage() {
    receive_until_end();
    pthread_exit(nullptr);
}

void webkit_client::processMessage(webkit_message*& message) {
    const std::int32_t type = message->msg_type;
    if (type < 0 || type >= static_cast<std::int32_t>(kestrel::kInboundHandlerSlots) ||
        func_array == nullptr || func_array[type] == nullptr) {
        report_dropped(type, "no handler");
        return;
    }
    const KeptItems kept;
    kestrel::Items* const items = kept.get();
    try {
        if (items == nullptr) throw std::bad_alloc();
        if (!kestrel::decode_items(*message, *items)) {
            report_dropped(type, "its items do not fit its header");
            return;
        }
        items->strings.resize(std::max(items->strings.size() + 1, kestrel::kMinHandlerStrings));
    } catch (const std::bad_alloc&) {
        report_dropped(type, "out of memory");
        return;
    }
    func_array[type](items->ints.data(), items->strings.data());
}
