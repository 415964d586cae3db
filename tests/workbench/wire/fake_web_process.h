#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "base/file_descriptor.h"

namespace kestrel::testing {

// The web process's end of a link, in the same thread as the host under test: whatever waits here
// runs the default main context meanwhile, ten seconds at most.
class FakeWebProcess {
  public:
    // Connects to a listening host.
    explicit FakeWebProcess(const std::string& socket_path);
    // Takes over a connected socket.
    explicit FakeWebProcess(FileDescriptor socket);

    void announce(int pid);

    // Sends what the socket takes, then waits for more room.
    void write(std::string_view bytes);

    // One frame, or "" when the host has hung up or none comes.
    std::string read_frame();

    // Whether nothing is left to read when the host has done all it could do at once.
    bool is_quiet();

    // Waits for the end of the stream; false if anything else comes first.
    bool sees_end();

    void hang_up() { socket_ = FileDescriptor(); }

  private:
    // Waits until `size` bytes have come.
    bool read_until(std::size_t size);
    void read_what_is_there();

    FileDescriptor socket_;
    std::string unread_;
    bool has_ended_ = false;
};

// Two ends of a new connection: the host's, then the web process's.
std::pair<FileDescriptor, FileDescriptor> socket_pair();

}  // namespace kestrel::testing
