#pragma once

#include <cstddef>
#include <fstream>
#include <map>
#include <string>
#include <vector>

#include "tests/support/frame_bytes.h"
#include "tests/support/process.h"

namespace kestrel::testing {

// answering-host as a child process. It listens where the extension connects, and calls the page's
// `answered` with the key of each item that the page sets.
class HostProcess {
  public:
    // Returns when it listens.
    explicit HostProcess(const std::string& client_directory);
    ~HostProcess() { kill(); }
    HostProcess(const HostProcess&) = delete;
    HostProcess& operator=(const HostProcess&) = delete;

    // Each returns when the process has stopped, continues or has ended.
    void stop() const { process_.stop(); }
    void resume() const { process_.resume(); }
    void kill();

    // Waits until `count` frames of `type` have been received.
    bool wait_for(int type, std::size_t count = 1);

    // Bytes received so far.
    std::size_t bytes() const;

    // All frames of `type` so far.
    const std::vector<ReceivedFrame>& frames(int type);

  private:
    void read_record();

    std::string socket_;
    std::string record_;
    Process process_;
    std::string unread_;
    std::ifstream::off_type read_ = 0;
    std::map<int, std::vector<ReceivedFrame>> frames_;
};

}  // namespace kestrel::testing
