#include "tests/support/process_state.h"

#include <sched.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <mutex>
#include <string>
#include <thread>

namespace kestrel::testing {
namespace {

// Not an object: a thread may ask while another one leaves through exit.
constexpr const char* kThreads = "/proc/self/task/";

std::size_t entries_of(const std::string& directory) {
    const std::filesystem::directory_iterator entries(directory);
    return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
}

// The thread sanitizer starts one of its own along with the program's first, and keeps it. A joined
// thread stays listed for a moment.
void start_first_thread() {
    pid_t first = 0;
    std::thread([&first] { first = gettid(); }).join();
    comes_true([first] {
        return !std::filesystem::exists(std::string(kThreads) + std::to_string(first));
    });
}

}  // namespace

// The descriptor that lists the directory is one of its entries.
std::size_t open_descriptors() { return entries_of("/proc/self/fd") - 1; }

std::size_t thread_count() {
    static std::once_flag first_call;
    std::call_once(first_call, start_first_thread);
    return entries_of(kThreads);
}

std::size_t resident_bytes() {
    std::size_t size = 0;
    std::size_t resident = 0;
    std::ifstream("/proc/self/statm") >> size >> resident;
    return resident * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

// A running thread's file says "running"; a sleeping one's begins with the system call's number.
bool is_blocked_in(pid_t thread, long system_call) {
    std::ifstream file("/proc/" + std::to_string(thread) + "/syscall");
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
