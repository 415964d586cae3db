#include "ipc/wire_trace.h"

#include <fcntl.h>
#include <poll.h>
#include <pthread.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <string>
#include <string_view>
#include <utility>

#include "ipc/error_line.h"
#include "ipc/message_json.h"
#include "ipc/message_text.h"
#include "ipc/signals_blocked.h"
#include "ipc/trace_queue.h"
#include "ipc/trace_time.h"
#include "log/file_descriptor.h"

constinit std::atomic<bool> kestrel::wire_is_traced = false;

namespace kestrel {
namespace {

constexpr const char* kVariable = "KESTREL_TRACE";
constexpr std::size_t kQueueBytes = 32UL * 1024 * 1024;
constexpr std::chrono::milliseconds kPatienceAtExit{500};

// Never destroyed: the link's reader and the writer are alive when static objects go.
TraceQueue& queue() {
    static TraceQueue* const instance = new TraceQueue(kQueueBytes);
    return *instance;
}

// In one write, unless the other end takes less. False when it cannot be written at all.
bool write_line(int fd, std::string_view line) {
    while (!line.empty()) {
        const ssize_t written = write(fd, line.data(), line.size());
        if (written >= 0) {
            line.remove_prefix(static_cast<std::size_t>(written));
        } else if (errno == EAGAIN) {
            pollfd writable{fd, POLLOUT, 0};
            poll(&writable, 1, -1);
        } else if (errno != EINTR) {
            return false;
        }
    }
    return true;
}

std::string text_lines(const TracedFrame& traced, int pid) {
    const std::string time = "[" + local_time(traced.time) + "] ";
    std::string lines;
    if (traced.dropped > 0) {
        const std::string note = "frames dropped: " + std::to_string(traced.dropped);
        lines += time + note_text(pid, note) + '\n';
    }
    if (traced.frame) lines += time + message_text(traced.direction, pid, *traced.frame) + '\n';
    return lines;
}

std::string json_lines(const TracedFrame& traced, int pid) {
    std::string lines;
    if (traced.dropped > 0) lines += dropped_json(traced.time, pid, traced.dropped) + '\n';
    if (traced.frame) {
        lines += message_json(traced.time, traced.direction, pid, *traced.frame) + '\n';
    }
    return lines;
}

// Where the trace goes. Owned by the writer thread.
struct Destination {
    std::string path;               // "" for standard error
    FileDescriptor standard_error;  // a copy, so that its number is never that of the link's socket
};

// Returns when the trace cannot be written; errno says why.
void write_frames(int fd, std::string (*lines_of)(const TracedFrame&, int)) {
    const int pid = getpid();
    std::size_t lost = 0;
    for (;;) {
        TracedFrame next = queue().take();
        next.dropped += std::exchange(lost, 0);
        std::string lines;
        try {
            lines = lines_of(next, pid);
        } catch (const std::bad_alloc&) {
            lost = next.dropped + (next.frame ? 1 : 0);
            continue;
        }
        if (!write_line(fd, lines)) return;
    }
}

void write_trace(const Destination& to) {
    if (to.path.empty()) {
        write_frames(to.standard_error.get(), text_lines);
        return;
    }
    // A FIFO waits here for its reader.
    const FileDescriptor file(open(
        to.path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NOCTTY, S_IRUSR | S_IWUSR));
    if (file.is_open()) write_frames(file.get(), json_lines);
    const std::string reason = std::strerror(errno);
    write_line(to.standard_error.get(),
               "Could not write the wire's trace to " + to.path + ": " + reason + "\n");
}

void* run_writer(void* destination) {
    const std::unique_ptr<Destination> to(static_cast<Destination*>(destination));
    write_trace(*to);
    wire_is_traced = false;
    queue().close();
    return nullptr;
}

bool start_writer(std::unique_ptr<Destination> to) {
    const SignalsBlocked blocked;  // a reader that has gone must not be a SIGPIPE
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setdetachstate(&attributes, PTHREAD_CREATE_DETACHED);
    pthread_t thread{};
    const int error = pthread_create(&thread, &attributes, run_writer, to.get());
    pthread_attr_destroy(&attributes);
    if (error != 0) return false;
    (void)to.release();  // the thread's now
    return true;
}

}  // namespace

void start_wire_trace() {
    static bool started = false;
    const char* const value = std::getenv(kVariable);
    if (started || value == nullptr || *value == '\0') return;
    started = true;

    const std::string_view wanted = value;
    auto to = std::make_unique<Destination>();
    if (wanted != "1") to->path = wanted;
    to->standard_error = FileDescriptor(fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
    // Frames must find the flag set, and the writer must be able to clear it.
    wire_is_traced = true;
    if (!start_writer(std::move(to))) {
        wire_is_traced = false;
        error_line("Could not start the thread that writes the wire's trace\n");
        return;
    }
    std::atexit([] { queue().wait_until_done(kPatienceAtExit); });
}

void put_into_wire_trace(Direction direction, const webkit_message& frame) {
    const int saved_errno = errno;
    queue().put(direction, frame);
    errno = saved_errno;
}

}  // namespace kestrel
