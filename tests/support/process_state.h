// Figures of this process and its threads, from the kernel.
#pragma once

#include <sys/types.h>

#include <cstddef>

namespace kestrel::testing {

std::size_t open_descriptors();
std::size_t thread_count();
std::size_t resident_bytes();

// Whether the thread is blocked in the system call with this number.
bool is_blocked_in(pid_t thread, long system_call);

}  // namespace kestrel::testing
