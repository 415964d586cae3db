#pragma once

#include <string>

#include "tests/support/host_end.h"

namespace kestrel::testing {

// The daemon's end of one process's connection.
class DaemonConnection : public HostEnd {
  public:
    using HostEnd::HostEnd;

    // One whole message: the length field, and as many bytes as it says.
    std::string read_message() const;

    // Whether the process has closed its end, with nothing left to be read.
    bool is_closed() const;
};

// Listens where the client looks for the log daemon.
class FakeDaemon {
  public:
    explicit FakeDaemon(const std::string& path);
    FakeDaemon();  // at the per-user place below home()
    ~FakeDaemon();
    FakeDaemon(const FakeDaemon&) = delete;
    FakeDaemon& operator=(const FakeDaemon&) = delete;

    // The next process that has connected.
    DaemonConnection accept() const;

    // Whether no process has connected since the last accept.
    bool is_quiet() const;

  private:
    std::string path_;
    int fd_;
};

}  // namespace kestrel::testing
