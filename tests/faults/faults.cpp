#include "tests/faults/faults.h"

#include <fcntl.h>
#include <pthread.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdlib>
#include <memory>

namespace kestrel::testing {
namespace {

constinit std::string_view failing;
constinit int failing_error = 0;
constinit std::atomic<int> countdown = 0;
constinit std::atomic<bool> failed = false;
constinit std::atomic<int> threads = 0;
thread_local bool is_exempt = false;

bool fails_now(std::string_view function) {
    if (is_exempt || function != failing || countdown.fetch_sub(1) != 1) return false;
    failed = true;
    errno = failing_error;
    return true;
}

struct ThreadBody {
    void* (*body)(void*);
    void* argument;
};

// Counts the thread as ended however it ends: pthread_exit unwinds.
struct CountedThread {
    ~CountedThread() { --threads; }
};

void* run_counted(void* thread_body) {
    const CountedThread counted;
    const std::unique_ptr<ThreadBody> thread(static_cast<ThreadBody*>(thread_body));
    return thread->body(thread->argument);
}

}  // namespace

void fail(std::string_view function, int nth, int error) {
    failing = function;
    failing_error = error;
    failed = false;
    countdown = nth;
}

bool has_failed() { return failed; }

int running_threads() { return threads; }

NoFaults::NoFaults() { is_exempt = true; }
NoFaults::~NoFaults() { is_exempt = false; }

}  // namespace kestrel::testing

using kestrel::testing::failing_error;
using kestrel::testing::fails_now;
using kestrel::testing::run_counted;
using kestrel::testing::ThreadBody;
using kestrel::testing::threads;

extern "C" {

#define FAULTY(result, on_error, name, parameters, arguments)         \
    result __real_##name parameters;                                  \
    result __wrap_##name parameters {                                 \
        return fails_now(#name) ? on_error : __real_##name arguments; \
    }

// NOLINTBEGIN: a row a function; templates cannot make names.
FAULTY(int, -1, socket, (int domain, int type, int protocol), (domain, type, protocol))
FAULTY(int, -1, connect, (int fd, const sockaddr* address, socklen_t size), (fd, address, size))
FAULTY(ssize_t, -1, send, (int fd, const void* bytes, size_t size, int flags),
       (fd, bytes, size, flags))
FAULTY(ssize_t, -1, read, (int fd, void* bytes, size_t size), (fd, bytes, size))
FAULTY(ssize_t, -1, write, (int fd, const void* bytes, size_t size), (fd, bytes, size))
FAULTY(int, -1, ftruncate, (int fd, off_t size), (fd, size))
FAULTY(void*, MAP_FAILED, mmap,
       (void* place, size_t size, int protection, int flags, int fd, off_t offset),
       (place, size, protection, flags, fd, offset))
FAULTY(int, -1, mkdir, (const char* path, mode_t mode), (path, mode))
FAULTY(int, -1, stat, (const char* path, struct stat* status), (path, status))
FAULTY(int, -1, flock, (int fd, int operation), (fd, operation))
FAULTY(int, -1, kill, (pid_t process, int number), (process, number))
FAULTY(ssize_t, -1, readlink, (const char* path, char* target, size_t size), (path, target, size))
FAULTY(void*, nullptr, malloc, (size_t size), (size))
// NOLINTEND

#undef FAULTY

int __real_open(const char* path, int flags, mode_t mode);
int __wrap_open(const char* path, int flags, ...) {
    if (fails_now("open")) return -1;
    std::va_list rest;
    va_start(rest, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(rest, mode_t) : 0;
    va_end(rest);
    return __real_open(path, flags, mode);
}

int __real_pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*body)(void*),
                          void* argument);
int __wrap_pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*body)(void*),
                          void* argument) {
    if (fails_now("pthread_create")) return failing_error;
    auto counted = std::make_unique<ThreadBody>(ThreadBody{body, argument});
    ++threads;
    const int error = __real_pthread_create(thread, attributes, run_counted, counted.get());
    if (error == 0) {
        (void)counted.release();  // the thread's now
    } else {
        --threads;
    }
    return error;
}

// Nobody waits for the seconds between attempts to connect.
unsigned __wrap_sleep(unsigned /*seconds*/) { return 0; }

}  // extern "C"
