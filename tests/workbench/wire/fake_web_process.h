#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "base/file_descriptor.h"

namespace kestrel::testing {

// The web process's end of a link, in the same thread as the host under test. Waiting functions run
// the default main context, for at most ten seconds.
class FakeWebProcess {
  public:
    // Connects to a listening host.
    explicit FakeWebProcess(const std::string& socket_path);
    // Takes ownership of a connected socket.
    explicit FakeWebProcess(FileDescriptor socket);

    void announce(int pid);

    // Sends all bytes, waiting for room in the socket.
    void write(std::string_view bytes);

    // Reads one frame; "" on a closed connection or timeout.
    std::string read_frame();

    // Runs the host until it is idle; true if there is nothing to read.
    bool is_quiet();

    // Waits for the end of the stream; false if data arrive first.
    bool sees_end();

    void hang_up() { socket_ = FileDescriptor(); }

  private:
    // Waits for `size` bytes.
    bool read_until(std::size_t size);
    void read_what_is_there();

    FileDescriptor socket_;
    std::string unread_;
    bool has_ended_ = false;
};

// The two ends of a new connection: the host's, then the web process's.
std::pair<FileDescriptor, FileDescriptor> socket_pair();

}  // namespace kestrel::testing
