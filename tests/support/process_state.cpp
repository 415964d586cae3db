#include "tests/support/process_state.h"

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <mutex>
#include <string>
#include <thread>

#include "tests/support/wait_until.h"

namespace kestrel::testing {
namespace {

// Not an object: a thread may ask while another one leaves through exit.
constexpr const char* kThreads = "/proc/self/task/";

std::size_t entries_of(const std::string& directory) {
    const std::filesystem::directory_iterator entries(directory);
    return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
}

// The thread sanitizer starts a thread of its own along with the program's first one. A joined
// thread stays listed for a moment.
void start_first_thread() {
    pid_t first = 0;
    std::thread([&first] { first = gettid(); }).join();
    wait_until([first] {
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

}  // namespace kestrel::testing
