// What the kernel says about this process and its threads.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <functional>

namespace kestrel::testing {

std::size_t open_descriptors();
std::size_t thread_count();
std::size_t resident_bytes();

// Whether the thread sleeps inside the system call with this number.
bool is_blocked_in(pid_t thread, long system_call);

// For conditions that nothing announces: asks again and again, ten seconds at most; false if the
// condition never came true.
bool comes_true(const std::function<bool()>& condition);

}  // namespace kestrel::testing
