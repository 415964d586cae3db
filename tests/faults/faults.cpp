#include "tests/faults/faults.h"

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <poll.h>
#include <pthread.h>
#include <pwd.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/utsname.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <memory>
#include <utility>

namespace kestrel::testing {
namespace {

constinit std::string_view failing;
constinit int failing_error = 0;
constinit std::atomic<int> countdown = 0;
constinit std::atomic<bool> failed = false;
constinit std::string_view failing_before;
constinit int error_before = 0;
constinit std::atomic<bool> is_before = false;
constinit std::atomic<int> threads = 0;
constinit std::string entry_name;
constinit std::string entry_home;
thread_local bool is_exempt = false;

bool fails_now(std::string_view function) {
    if (is_exempt) return false;
    if (function == failing_before && is_before.exchange(false)) {
        errno = error_before;
        return true;
    }
    if (function != failing || countdown.fetch_sub(1) != 1) return false;
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

void fail_before(std::string_view function, int error) {
    failing_before = function;
    error_before = error;
    is_before = true;
}

bool has_failed() { return failed; }

void set_password_entry(std::string name, std::string home) {
    entry_name = std::move(name);
    entry_home = std::move(home);
}

int running_threads() { return threads; }

NoFaults::NoFaults() { is_exempt = true; }
NoFaults::~NoFaults() { is_exempt = false; }

}  // namespace kestrel::testing

using kestrel::testing::entry_home;
using kestrel::testing::entry_name;
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

// NOLINTBEGIN: one row per function; templates cannot create names.
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
FAULTY(int, -1, munmap, (void* place, size_t size), (place, size))
FAULTY(int, -1, mkdir, (const char* path, mode_t mode), (path, mode))
FAULTY(int, -1, stat, (const char* path, struct stat* status), (path, status))
FAULTY(int, -1, flock, (int fd, int operation), (fd, operation))
FAULTY(int, -1, kill, (pid_t process, int number), (process, number))
FAULTY(ssize_t, -1, readlink, (const char* path, char* target, size_t size), (path, target, size))
FAULTY(ssize_t, -1, readlinkat, (int directory, const char* path, char* target, size_t size),
       (directory, path, target, size))
FAULTY(void*, nullptr, malloc, (size_t size), (size))
FAULTY(void*, nullptr, calloc, (size_t count, size_t size), (count, size))
FAULTY(char*, nullptr, strdup, (const char* text), (text))
FAULTY(int, -1, setsockopt, (int fd, int level, int name, const void* value, socklen_t size),
       (fd, level, name, value, size))
FAULTY(int, -1, shutdown, (int fd, int how), (fd, how))
FAULTY(int, -1, poll, (pollfd * descriptors, nfds_t count, int timeout),
       (descriptors, count, timeout))
FAULTY(int, -1, access, (const char* path, int mode), (path, mode))
FAULTY(int, -1, fstat, (int fd, struct stat* status), (fd, status))
FAULTY(DIR*, nullptr, opendir, (const char* path), (path))
FAULTY(dirent*, nullptr, readdir, (DIR * directory), (directory))
FAULTY(FILE*, nullptr, fopen, (const char* path, const char* mode), (path, mode))
FAULTY(char*, nullptr, fgets, (char* text, int size, FILE* file), (text, size, file))
FAULTY(time_t, -1, mktime, (tm * fields), (fields))
FAULTY(int, -1, uname, (utsname * name), (name))
FAULTY(void*, nullptr, dlopen, (const char* name, int flags), (name, flags))
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

int __real_openat(int directory, const char* path, int flags, mode_t mode);
int __wrap_openat(int directory, const char* path, int flags, ...) {
    if (fails_now("openat")) return -1;
    std::va_list rest;
    va_start(rest, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(rest, mode_t) : 0;
    va_end(rest);
    return __real_openat(directory, path, flags, mode);
}

// Commands with a number or without an argument.
int __real_fcntl(int fd, int command, long number);
int __wrap_fcntl(int fd, int command, ...) {
    if (fails_now("fcntl")) return -1;
    std::va_list rest;
    va_start(rest, command);
    const long number = va_arg(rest, long);
    va_end(rest);
    return __real_fcntl(fd, command, number);
}

// The kernel has closed the file even when it reports an error.
int __real_close(int fd);
int __wrap_close(int fd) {
    const int result = __real_close(fd);
    return fails_now("close") ? -1 : result;
}
int __real_closedir(DIR* directory);
int __wrap_closedir(DIR* directory) {
    const int result = __real_closedir(directory);
    return fails_now("closedir") ? -1 : result;
}
int __real_fclose(FILE* file);
int __wrap_fclose(FILE* file) {
    const int result = __real_fclose(file);
    return fails_now("fclose") ? EOF : result;
}

void* __real_mremap(void* from, size_t old_size, size_t size, int flags, void* to);
void* __wrap_mremap(void* from, size_t old_size, size_t size, int flags, ...) {
    if (fails_now("mremap")) return MAP_FAILED;
    std::va_list rest;
    va_start(rest, flags);
    void* const to = (flags & MREMAP_FIXED) != 0 ? va_arg(rest, void*) : nullptr;
    va_end(rest);
    return __real_mremap(from, old_size, size, flags, to);
}

// Under its name, and under the one that it has in hardened code.
int __wrap_asprintf(char** text, const char* format, ...) {
    if (fails_now("asprintf")) return -1;
    std::va_list arguments;
    va_start(arguments, format);
    const int length = vasprintf(text, format, arguments);
    va_end(arguments);
    return length;
}
int __wrap___asprintf_chk(char** text, int /*checks*/, const char* format, ...) {
    if (fails_now("asprintf")) return -1;
    std::va_list arguments;
    va_start(arguments, format);
    const int length = vasprintf(text, format, arguments);
    va_end(arguments);
    return length;
}

// The entry that the test has set: the machine's would lead to a real home directory.
int __wrap_getpwuid_r(uid_t user, passwd* entry, char* /*buffer*/, size_t /*size*/,
                      passwd** found) {
    *found = nullptr;
    if (fails_now("getpwuid_r")) return failing_error;
    *entry = {};
    entry->pw_uid = user;
    entry->pw_name = entry_name.data();
    entry->pw_dir = entry_home.data();
    *found = entry;
    return 0;
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

// Skips the pause between attempts to connect.
unsigned __wrap_sleep(unsigned /*seconds*/) { return 0; }

}  // extern "C"
