#pragma once

#include <sys/socket.h>

#include <string>

#include "base/file_descriptor.h"
#include "tests/support/host_end.h"

namespace kestrel::testing {

// A host that listens on a Unix socket at `path`, which must not exist and has 107 bytes at most.
// The file stays when the host ends, as after a crash. `queue` is the backlog of listen().
class ListeningHost {
  public:
    explicit ListeningHost(const std::string& path, int queue = SOMAXCONN);

    // The next connection; without a descriptor if none comes.
    HostEnd accept() const;

    // Readable when a connection can be accepted.
    int fd() const { return socket_.get(); }

  private:
    FileDescriptor socket_;
};

}  // namespace kestrel::testing
