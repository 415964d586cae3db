#pragma once

#include <unistd.h>

#include <utility>

namespace kestrel {

// A descriptor that is closed with this object.
class FileDescriptor {
  public:
    FileDescriptor() = default;
    explicit FileDescriptor(int fd) : fd_(fd) {}
    ~FileDescriptor() {
        if (fd_ != -1) close(fd_);
    }
    FileDescriptor(FileDescriptor&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        std::swap(fd_, other.fd_);
        return *this;
    }

    bool is_open() const { return fd_ != -1; }
    int get() const { return fd_; }

  private:
    int fd_ = -1;
};

}  // namespace kestrel
