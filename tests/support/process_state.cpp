#include "tests/support/process_state.h"

#include <sched.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace kestrel::testing {
namespace {

std::size_t entries_of(const char* directory) {
    const std::filesystem::directory_iterator entries(directory);
    return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
}

}  // namespace

// The descriptor that lists the directory is one of its entries.
std::size_t open_descriptors() { return entries_of("/proc/self/fd") - 1; }

std::size_t thread_count() { return entries_of("/proc/self/task"); }

// A running thread's file says "running"; a sleeping one's begins with the system call's number.
bool is_blocked_in(pid_t thread, long system_call) {
    std::ifstream file("/proc/self/task/" + std::to_string(thread) + "/syscall");
    long number = -1;
    return file >> number && number == system_call;
}

bool comes_true(const std::function<bool()>& condition) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline) return false;
        sched_yield();
    }
    return true;
}

}  // namespace kestrel::testing
