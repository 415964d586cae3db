#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "base/file_descriptor.h"
#include "tests/support/wait_until.h"

namespace kestrel::testing {

// Waits for bytes to read, for a connection or for the end of the stream; false if none comes.
bool is_readable(int fd, int milliseconds = kPatience);

// The host's end of one connection, blocking. Reading waits for at most kPatience and then returns
// the bytes that have come.
class HostEnd {
  public:
    // Takes over the connected socket.
    explicit HostEnd(int fd) : socket_(fd) {}

    // Exactly `size` bytes, fewer only if they do not come.
    std::string read(std::size_t size) const;

    // One frame: the header and the payload that it announces.
    std::string read_frame() const;

    // All that can be read without blocking; nothing at the end of the stream.
    std::string read_available() const;

    // Whether nothing can be read at the moment.
    bool is_quiet() const;

    // False when the connection has failed.
    bool write(std::string_view bytes) const;

    void hang_up() { socket_ = FileDescriptor(); }

    int fd() const { return socket_.get(); }

  private:
    FileDescriptor socket_;
};

}  // namespace kestrel::testing
