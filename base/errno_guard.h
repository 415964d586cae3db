#pragma once

#include <cerrno>

namespace kestrel {

// Restores errno at the end of a scope.
class ErrnoGuard {
  public:
    ErrnoGuard() = default;
    ~ErrnoGuard() { errno = saved_; }
    ErrnoGuard(const ErrnoGuard&) = delete;
    ErrnoGuard& operator=(const ErrnoGuard&) = delete;

  private:
    int saved_ = errno;
};

}  // namespace kestrel
