#pragma once

#include <pthread.h>
#include <sys/types.h>

#include <future>

namespace kestrel::testing {

// The link's read loop, on a thread whose end can be awaited. Reads from webkit_client::server_fd,
// which must outlive it.
class ReaderThread {
  public:
    ReaderThread();
    // Ends the connection if the thread still reads from it.
    ~ReaderThread();
    ReaderThread(const ReaderThread&) = delete;
    ReaderThread& operator=(const ReaderThread&) = delete;

    // Waits until the thread has ended, ten seconds at most; false if it has not.
    bool ends();

    // Waits until the thread has read all that was written and waits for more; false if it does not
    // within ten seconds.
    bool waits_for_more() const;

    // The same for the rest of a header, which the thread does not wait for long.
    bool waits_for_rest_of_header() const;

    // Interrupts the thread with a signal and waits until its handler has run there; false if it
    // does not within ten seconds.
    bool interrupt() const;

  private:
    bool waits_in(long system_call) const;
    static void* run(void* self);

    pthread_t thread_{};
    std::promise<pid_t> started_;
    pid_t id_ = 0;
    bool has_ended_ = false;
};

}  // namespace kestrel::testing
