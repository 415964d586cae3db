#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <string>

#include "base/file_descriptor.h"
#include "common/LinuxCommonUtils.h"
#include "common/open_below.h"

namespace {

using kestrel::FileDescriptor;
using kestrel::utilities::open_below;

enum class LockState { kFailed, kStale, kRunning, kOwned };

// In a shared scratch directory another user may have created a FIFO of that name: opening it must
// not block.
constexpr int kNonBlocking = O_CLOEXEC | O_NONBLOCK;

// A file with a second hard link may be any file of this user. Reading a directory fails anyway.
bool may_be_a_lock(int fd) {
    struct stat status {};
    if (fstat(fd, &status) == -1) return false;
    return S_ISDIR(status.st_mode) || (S_ISREG(status.st_mode) && status.st_nlink <= 1);
}

LockState failure(const std::string& what) {
    std::fputs((what + std::strerror(errno) + "\n").c_str(), stderr);
    return LockState::kFailed;
}

// Locks an open file. A child that another thread forks meanwhile shares the lock, so closing the
// file would not release it.
class FileLock {
  public:
    explicit FileLock(int fd) : fd_(fd), is_held_(flock(fd, LOCK_EX) == 0) {}
    ~FileLock() {
        if (is_held_) flock(fd_, LOCK_UN);
    }
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;

    bool is_held() const { return is_held_; }

  private:
    int fd_;
    bool is_held_;
};

// Up to the first newline: normally all of it, including the NULs between the arguments.
std::string command_line(const std::string& process) {
    std::ifstream file("/proc/" + process + "/cmdline");
    std::string line;
    std::getline(file, line);
    return line;
}

LockState read_lock(const std::string& scratch, const std::string& name) {
    const FileDescriptor file = open_below(scratch, name, O_RDONLY | kNonBlocking);
    if (!file.is_open()) return errno == ENOENT ? LockState::kStale : LockState::kFailed;
    if (!may_be_a_lock(file.get())) return LockState::kFailed;
    const FileLock lock(file.get());
    if (!lock.is_held()) return failure("locking error: ");

    std::int32_t owner = 0;
    const ssize_t size = read(file.get(), &owner, sizeof owner);
    if (size == -1) return failure("reading error for lock file: ");
    // kill() takes zero and negative ids for process groups.
    if (size != sizeof owner || owner <= 0 || kill(owner, 0) == -1) return LockState::kStale;
    return command_line("self") == command_line(std::to_string(owner)) ? LockState::kRunning
                                                                       : LockState::kStale;
}

LockState take_lock(const std::string& scratch, const std::string& name) {
    const FileDescriptor file = open_below(scratch, name, O_RDWR | O_CREAT | kNonBlocking, 0700);
    if (!file.is_open()) return failure("error opening write : ");
    if (!may_be_a_lock(file.get())) return LockState::kFailed;
    const FileLock lock(file.get());
    if (!lock.is_held()) return failure("locking error: ");

    const std::int32_t owner = getpid();
    if (write(file.get(), &owner, sizeof owner) == -1) return failure("unable to write in file :");
    return LockState::kOwned;
}

}  // namespace

// By value: the exported signature requires it.
bool LinuxCommonUtils::IsAnotherInstanceRunning(std::string name) {  // NOLINT
    const std::string program = name.substr(0, name.find('\0'));     // as in every path
    const std::string scratch = getUserTmpDir();
    const std::string file = "." + program + ".lock";

    LockState state = read_lock(scratch, file);
    if (state == LockState::kStale) state = take_lock(scratch, file);
    if (state == LockState::kFailed) {
        const std::string advice = "Failed to check if another Key Warden exist\nPlease remove" +
                                   scratch + "/" + file + " file and kill any '" + program +
                                   "' which is running.\n";
        std::fputs(advice.c_str(), stderr);
    }
    return state != LockState::kOwned;
}
