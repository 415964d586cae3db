#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace kestrel::testing {

// Waits so long at most for bytes to read, a connection or an end.
bool is_readable(int fd, int milliseconds);

// The host's end of one connection. Reading waits ten seconds at most and then gives what there
// is.
class HostEnd {
  public:
    // Takes over the descriptor.
    explicit HostEnd(int fd) : fd_(fd) {}
    ~HostEnd() { hang_up(); }
    HostEnd(const HostEnd&) = delete;
    HostEnd& operator=(const HostEnd&) = delete;

    // Exactly `size` bytes, fewer only if they do not come.
    std::string read(std::size_t size) const;

    // One frame: header and the payload that it announces.
    std::string read_frame() const;

    // Whether nothing waits to be read.
    bool is_quiet() const;

    void write(std::string_view bytes) const;
    void hang_up();

    int fd() const { return fd_; }

  private:
    int fd_;
};

}  // namespace kestrel::testing
