#pragma once

#include <sys/resource.h>

namespace kestrel::testing {

// The sanitizers' allocators neither obey the limit nor fail.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr bool kMemoryCanRunOut = false;
#else
inline constexpr bool kMemoryCanRunOut = true;
#endif

// For its lifetime the process gets no new memory beyond what the allocator holds in reserve.
class MemoryLimit {
  public:
    MemoryLimit() {
        getrlimit(RLIMIT_DATA, &previous_);
        const rlimit none{1, previous_.rlim_max};
        setrlimit(RLIMIT_DATA, &none);
    }
    ~MemoryLimit() { setrlimit(RLIMIT_DATA, &previous_); }
    MemoryLimit(const MemoryLimit&) = delete;
    MemoryLimit& operator=(const MemoryLimit&) = delete;

  private:
    rlimit previous_{};
};

}  // namespace kestrel::testing
