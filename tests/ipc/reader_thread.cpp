#include "tests/ipc/reader_thread.h"

#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <ctime>

#include "ipc/webkit_client.h"
#include "tests/ipc/interruption.h"
#include "tests/support/process_state.h"
#include "tests/support/wait_until.h"

namespace kestrel::testing {

ReaderThread::ReaderThread() {
    pthread_create(&thread_, nullptr, run, this);
    id_ = started_.get_future().get();
}

ReaderThread::~ReaderThread() {
    if (has_ended_) return;
    shutdown(webkit_client::server_fd, SHUT_RDWR);
    if (!ends()) pthread_detach(thread_);
}

bool ReaderThread::ends() {
    timespec deadline{};
    clock_gettime(CLOCK_REALTIME, &deadline);
    deadline.tv_sec += 10;
    has_ended_ = has_ended_ || pthread_timedjoin_np(thread_, nullptr, &deadline) == 0;
    return has_ended_;
}

bool ReaderThread::waits_for_more() const { return waits_in(SYS_read); }

bool ReaderThread::waits_for_rest_of_header() const {
#ifdef SYS_poll
    return waits_in(SYS_poll);
#else
    return waits_in(SYS_ppoll);
#endif
}

bool ReaderThread::waits_in(long system_call) const {
    return wait_until([=, this] {
        int unread = 0;
        ioctl(webkit_client::server_fd, FIONREAD, &unread);
        return unread == 0 && is_blocked_in(id_, system_call);
    });
}

bool ReaderThread::interrupt() const {
    const int before = interruptions();
    kestrel::testing::interrupt(thread_);
    return wait_until([before] { return interruptions() > before; });
}

void* ReaderThread::run(void* self) {
    static_cast<ReaderThread*>(self)->started_.set_value(gettid());
    webkit_client::recvMessage();
}

}  // namespace kestrel::testing
