#include "workbench/wire/trace_file.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstring>
#include <system_error>
#include <utility>
#include <vector>

#include "workbench/wire/trace_file_line.h"

namespace kestrel {
namespace {

constexpr std::size_t kFilePiece = std::size_t{256} << 10;

// Limits the memory for a malformed file.
constexpr std::size_t kMaxLine = std::size_t{64} << 20;

// Only a regular file is read: others may be endless, or block.
FileDescriptor open_regular(const std::string& path) {
    FileDescriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat status {};
    if (!file.is_open() || fstat(file.get(), &status) == -1) {
        throw std::system_error(errno, std::generic_category(), path);
    }
    if (!S_ISREG(status.st_mode)) {
        throw std::system_error(std::make_error_code(std::errc::invalid_argument),
                                path + " is not a regular file");
    }
    return file;
}

}  // namespace

TraceFile::TraceFile(const std::string& path) : file_(open_regular(path)) {}

bool TraceFile::read_piece(const Receiver& receive) {
    std::vector<char> piece(kFilePiece);
    const ssize_t got = read(file_.get(), piece.data(), piece.size());
    if (got == -1 && errno == EINTR) return true;
    if (got == -1) note(std::string("read error: ") + std::strerror(errno), receive);
    if (got <= 0) {
        finish(receive);
        return false;
    }
    add_bytes({piece.data(), static_cast<std::size_t>(got)}, receive);
    return true;
}

void TraceFile::add_bytes(std::string_view bytes, const Receiver& receive) {
    for (std::size_t end = 0; (end = bytes.find('\n')) != std::string_view::npos;) {
        if (unfinished_.empty()) {
            add_line(bytes.substr(0, end), receive);
        } else {
            unfinished_ += bytes.substr(0, end);
            add_line(std::exchange(unfinished_, {}), receive);
        }
        bytes.remove_prefix(end + 1);
    }
    if (!is_too_long_) unfinished_ += bytes;
    if (unfinished_.size() > kMaxLine) {
        is_too_long_ = true;
        unfinished_ = {};
    }
}

void TraceFile::add_line(std::string_view line, const Receiver& receive) {
    ++line_number_;
    try {
        if (std::exchange(is_too_long_, false)) throw InvalidTraceFileLine("too long");
        MessageRecord record = parse_trace_file_line(line);
        last_time_ = record.time;
        receive(std::move(record));
    } catch (const InvalidTraceFileLine& error) {
        note("line " + std::to_string(line_number_) + ": " + error.what(), receive);
    }
}

// With the time of the last line that had one.
void TraceFile::note(std::string_view text, const Receiver& receive) const {
    MessageRecord record = record_of(text);
    record.time = last_time_;
    receive(std::move(record));
}

void TraceFile::finish(const Receiver& receive) {
    if (unfinished_.empty() && !is_too_long_) return;
    add_line(std::exchange(unfinished_, {}), receive);
}

}  // namespace kestrel
