#pragma once

#include <pthread.h>

#include <csignal>

namespace kestrel {

// Blocks all signals in the calling thread while it exists. A thread that is started meanwhile
// inherits this.
class SignalsBlocked {
  public:
    SignalsBlocked() {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &previous_);
    }
    ~SignalsBlocked() { pthread_sigmask(SIG_SETMASK, &previous_, nullptr); }
    SignalsBlocked(const SignalsBlocked&) = delete;
    SignalsBlocked& operator=(const SignalsBlocked&) = delete;

  private:
    sigset_t previous_{};
};

}  // namespace kestrel
