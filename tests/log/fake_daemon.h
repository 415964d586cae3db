#pragma once

#include <string>
#include <utility>

#include "tests/support/host_end.h"
#include "tests/support/listening_host.h"

namespace kestrel::testing {

// The daemon's end of a connection.
class DaemonConnection : public HostEnd {
  public:
    explicit DaemonConnection(HostEnd connection) : HostEnd(std::move(connection)) {}

    // A complete message.
    std::string read_message() const;

    // Whether the process has closed its end and everything has been read.
    bool is_closed() const;
};

// Listens at the log daemon's socket.
class FakeDaemon {
  public:
    explicit FakeDaemon(const std::string& path);
    FakeDaemon();  // at the per-user path below home()
    ~FakeDaemon();
    FakeDaemon(const FakeDaemon&) = delete;
    FakeDaemon& operator=(const FakeDaemon&) = delete;

    // The next connection.
    DaemonConnection accept() const;

    // Whether no process has connected since the last accept.
    bool is_quiet() const;

  private:
    std::string path_;
    ListeningHost host_;
};

}  // namespace kestrel::testing
