#pragma once

#include <string>

namespace kestrel::testing {

// The daemon's end of one process's connection. Reading waits ten seconds at most and then gives
// what there is.
class DaemonConnection {
  public:
    explicit DaemonConnection(int fd) : fd_(fd) {}
    ~DaemonConnection() { hang_up(); }
    DaemonConnection(const DaemonConnection&) = delete;
    DaemonConnection& operator=(const DaemonConnection&) = delete;

    // One whole message: the length field, and as many bytes as it says.
    std::string read_message();

    // Whether nothing waits to be read.
    bool is_quiet() const;

    // Whether the process has closed its end, with nothing left to be read.
    bool is_closed() const;

    void hang_up();

  private:
    std::string read(std::size_t size);

    int fd_;
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
