#pragma once

#include <sys/socket.h>

#include <string>

#include "tests/support/host_end.h"

namespace kestrel::testing {

// A host that listens on a Unix socket at `path`, which must not exist and has 107 bytes at most.
// One connection more than `queue` may wait to be accepted.
class ListeningHost {
  public:
    explicit ListeningHost(const std::string& path, int queue = SOMAXCONN);
    ~ListeningHost();
    ListeningHost(const ListeningHost&) = delete;
    ListeningHost& operator=(const ListeningHost&) = delete;

    // The next connection; waits five seconds at most, and then it has no descriptor.
    HostEnd accept() const;

  private:
    int fd_;
};

}  // namespace kestrel::testing
