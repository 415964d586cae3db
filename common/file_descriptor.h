#pragma once

#include <unistd.h>

namespace kestrel::utilities {

// Owns an open file, or holds -1. The utilities stand alone, and so have their own.
class FileDescriptor {
  public:
    explicit FileDescriptor(int fd) : fd_(fd) {}
    ~FileDescriptor() {
        if (is_open()) close(fd_);
    }
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;

    bool is_open() const { return fd_ != -1; }
    int get() const { return fd_; }

  private:
    int fd_;
};

}  // namespace kestrel::utilities
