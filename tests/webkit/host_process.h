#pragma once

#include <sys/types.h>

#include <cstddef>
#include <fstream>
#include <map>
#include <string>
#include <vector>

#include "tests/webkit/scripted_host.h"

namespace kestrel::testing {

// A host that is a process of its own, from its making on: it listens where the extension connects,
// and calls the page's `answered` with the key of each item that the page sets.
class HostProcess {
  public:
    // Returns when it listens.
    explicit HostProcess(const std::string& client_directory);
    ~HostProcess() { die(); }
    HostProcess(const HostProcess&) = delete;
    HostProcess& operator=(const HostProcess&) = delete;

    // Each signals it, and returns when the kernel says that it stands still, runs or is dead.
    void stop() const;
    void resume() const;
    void die();

    // Waits until `count` frames of `type` have come in all.
    bool wait_for(int type, std::size_t count = 1);

    // How many it has taken so far.
    std::size_t bytes() const;

    // All frames of `type` so far.
    const std::vector<ReceivedFrame>& frames(int type);

  private:
    // The status of its next change of state.
    int change(int options) const;

    void read_record();

    std::string socket_;
    std::string record_;
    pid_t pid_ = -1;
    std::string unread_;
    std::ifstream::off_type read_ = 0;
    std::map<int, std::vector<ReceivedFrame>> frames_;
};

}  // namespace kestrel::testing
