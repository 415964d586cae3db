#pragma once

#include <unistd.h>

#include <utility>

#include "base/errno_guard.h"

namespace kestrel {

// Owner of a file descriptor; -1 if opening failed. Closing keeps errno, so that the error of an
// earlier call can still be read.
class FileDescriptor {
  public:
    FileDescriptor() = default;
    explicit FileDescriptor(int fd) : fd_(fd) {}
    ~FileDescriptor() {
        const ErrnoGuard errno_guard;
        if (is_open()) close(fd_);
    }
    FileDescriptor(FileDescriptor&& other) noexcept : fd_(other.release()) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        std::swap(fd_, other.fd_);
        return *this;
    }

    bool is_open() const { return fd_ != -1; }
    int get() const { return fd_; }
    int release() { return std::exchange(fd_, -1); }

  private:
    int fd_ = -1;
};

}  // namespace kestrel
