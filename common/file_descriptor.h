#pragma once

#include <unistd.h>

#include <cerrno>
#include <utility>

namespace kestrel::utilities {

// Owns an open file, or holds -1. Closing keeps errno, so that the error of an earlier call can
// still be read. The utilities stand alone, and so have their own.
class FileDescriptor {
  public:
    explicit FileDescriptor(int fd) : fd_(fd) {}
    ~FileDescriptor() {
        if (!is_open()) return;
        const int error = errno;
        close(fd_);
        errno = error;
    }
    FileDescriptor(FileDescriptor&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        std::swap(fd_, other.fd_);
        return *this;
    }

    bool is_open() const { return fd_ != -1; }
    int get() const { return fd_; }

  private:
    int fd_;
};

}  // namespace kestrel::utilities
