#pragma once

#include <csignal>

namespace kestrel::logging {

// Ignores SIGPIPE in the whole process while it exists.
class SigpipeIgnored {
  public:
    SigpipeIgnored() {
        struct sigaction ignore {};
        ignore.sa_handler = SIG_IGN;
        sigaction(SIGPIPE, &ignore, &previous_);
    }
    ~SigpipeIgnored() { sigaction(SIGPIPE, &previous_, nullptr); }
    SigpipeIgnored(const SigpipeIgnored&) = delete;
    SigpipeIgnored& operator=(const SigpipeIgnored&) = delete;

  private:
    struct sigaction previous_ {};
};

}  // namespace kestrel::logging
