#pragma once

#include <unistd.h>

#include <utility>

namespace kestrel::logging {

// An open file, closed at the end of its scope; -1 when opening failed.
class FileDescriptor {
  public:
    explicit FileDescriptor(int fd) : fd_(fd) {}
    ~FileDescriptor() {
        if (fd_ != -1) close(fd_);
    }
    FileDescriptor(FileDescriptor&& other) noexcept : fd_(other.release()) {}
    FileDescriptor& operator=(FileDescriptor&&) = delete;

    explicit operator bool() const { return fd_ != -1; }
    int get() const { return fd_; }
    int release() { return std::exchange(fd_, -1); }

  private:
    int fd_;
};

}  // namespace kestrel::logging
