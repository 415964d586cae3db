#include "trace/frame_trace.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <new>
#include <string>
#include <string_view>
#include <utility>

#include "base/errno_guard.h"
#include "base/error_line.h"
#include "base/file_descriptor.h"
#include "base/never_destroyed.h"
#include "ipc/frame_observer.h"
#include "trace/frame_json.h"
#include "trace/frame_text.h"
#include "trace/time_text.h"

namespace kestrel {
namespace {

using std::chrono::system_clock;

constexpr const char* kVariable = "KESTREL_TRACE";

// Without waiting for a FIFO's reader, when it is opened and when it is written to.
constexpr int kTraceFile = O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NOCTTY | O_NONBLOCK;

// A pipe that has room takes this much at once.
constexpr std::size_t kLongestLineOfText = 4'096;

class Trace {
  public:
    // To standard error with "1", else to the file of that name. False when it cannot be opened;
    // errno says why.
    bool open(std::string_view where) {
        if (where == "1") {
            // A copy, so that closing standard error does not give its number to the link's socket.
            file_ = FileDescriptor(fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
        } else {
            path_ = where;
            file_ = FileDescriptor(::open(path_.c_str(), kTraceFile, S_IRUSR | S_IWUSR));
        }
        return file_.is_open();
    }

    void write(Direction direction, const webkit_message& frame) noexcept {
        const ErrnoGuard errno_guard;
        const std::scoped_lock guard(lock_);
        if (!file_.is_open()) return;  // another thread has met its end
        try {
            write_lines(direction, frame);
        } catch (const std::bad_alloc&) {
            ++dropped_;
        }
    }

    void report_failure() const {
        const std::string reason = std::strerror(errno);
        error_line("Could not write the trace file " + path_ + ": " + reason + "\n");
    }

  private:
    std::string lines_of(Direction direction, const webkit_message& frame) const {
        const auto now = system_clock::now();
        return path_.empty() ? text_lines(now, direction, frame)
                             : json_lines(now, direction, frame);
    }

    std::string text_lines(system_clock::time_point now, Direction direction,
                           const webkit_message& frame) const {
        const int pid = getpid();
        const std::string time = "[" + local_time(now) + "] ";
        std::string lines;
        if (dropped_ > 0) {
            lines += time + note_text(pid, "frames dropped: " + std::to_string(dropped_)) + '\n';
        }
        lines += time + frame_text(direction, pid, frame);
        lines.resize(std::min(lines.size(), kLongestLineOfText - 1));
        return lines + '\n';
    }

    std::string json_lines(system_clock::time_point now, Direction direction,
                           const webkit_message& frame) const {
        const int pid = getpid();
        std::string lines;
        if (dropped_ > 0) lines += dropped_json(now, pid, dropped_) + '\n';
        return lines + frame_json(now, direction, pid, frame) + '\n';
    }

    bool has_room() const {
        pollfd writable{file_.get(), POLLOUT, 0};
        return poll(&writable, 1, 0) != 0;
    }

    // One write, unless the file takes less than all of it. WebKit's processes ignore SIGPIPE.
    void write_some(std::string& lines) {
        if (lines.empty() || !has_room()) return;
        ssize_t written = 0;
        do {
            written = ::write(file_.get(), lines.data(), lines.size());
        } while (written == -1 && errno == EINTR);
        if (written >= 0) {
            lines.erase(0, static_cast<std::size_t>(written));
        } else if (errno != EAGAIN) {
            end();
        }
    }

    void end() {
        report_failure();
        frame_observer = nullptr;
        file_ = FileDescriptor();
    }

    void write_lines(Direction direction, const webkit_message& frame) {
        write_some(unfinished_);
        std::string lines = unfinished_.empty() ? lines_of(direction, frame) : "";
        const std::size_t size = lines.size();
        write_some(lines);
        if (lines.size() == size) {
            ++dropped_;
        } else {
            dropped_ = 0;
            unfinished_ = std::move(lines);
        }
    }

    std::mutex lock_;
    FileDescriptor file_;
    std::string path_;        // "" for standard error
    std::string unfinished_;  // the rest of lines that were written in part
    std::size_t dropped_ = 0;
};

// The link's reader is alive when static objects are destroyed.
Trace& trace() {
    static NeverDestroyed<Trace> trace;
    return trace.object;
}

void write_to_trace(Direction direction, const webkit_message& frame) noexcept {
    trace().write(direction, frame);
}

}  // namespace

void start_frame_trace() {
    static bool was_called = false;
    const char* const where = std::getenv(kVariable);
    if (std::exchange(was_called, true) || where == nullptr || *where == '\0') return;
    if (trace().open(where)) {
        frame_observer = write_to_trace;
    } else {
        trace().report_failure();
    }
}

}  // namespace kestrel
