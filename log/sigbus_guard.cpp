#include "log/sigbus_guard.h"

#include <sys/mman.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstring>

namespace kestrel::logging {
namespace {

constinit std::atomic<char*> guarded = nullptr;
constinit const void* substitute_bytes = nullptr;
constinit std::size_t substitute_size = 0;
constinit std::size_t page_size = 0;
constinit std::atomic<bool> substituted = false;
constinit struct sigaction previous {};
// Whether on_sigbus is the handler, or a later handler chains to it.
constinit bool is_in_chain = false;

bool is_guarded(const void* address) {
    const auto begin = reinterpret_cast<std::uintptr_t>(guarded.load());
    const auto at = reinterpret_cast<std::uintptr_t>(address);
    return begin != 0 && at >= begin && at - begin < page_size;
}

// Replaces the lost page atomically, so that other threads see one page or the other. The flag is
// set before: a thread that has written to the substitute sees it.
bool substitute_page() {
    void* const page =
        mmap(nullptr, page_size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (page == MAP_FAILED) return false;
    std::memcpy(page, substitute_bytes, substitute_size);
    substituted = true;
    return mremap(page, page_size, page_size, MREMAP_MAYMOVE | MREMAP_FIXED, guarded.load()) !=
           MAP_FAILED;
}

// With the default action, the access is repeated and ends the process.
void chain(int number, siginfo_t* info, void* context) {
    if ((previous.sa_flags & SA_SIGINFO) != 0) {
        previous.sa_sigaction(number, info, context);
    } else if (previous.sa_handler != SIG_DFL && previous.sa_handler != SIG_IGN) {
        previous.sa_handler(number);
    } else {
        signal(number, SIG_DFL);
    }
}

void on_sigbus(int number, siginfo_t* info, void* context) {
    const int saved_errno = errno;
    if (!is_guarded(info->si_addr) || !substitute_page()) chain(number, info, context);
    errno = saved_errno;
}

}  // namespace

void set_sigbus_guard(void* page, const void* substitute, std::size_t size) {
    page_size = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    substitute_bytes = substitute;
    substitute_size = size;
    substituted = false;
    guarded = static_cast<char*>(page);
    struct sigaction current {};
    sigaction(SIGBUS, nullptr, &current);
    const bool has_handler = current.sa_handler != SIG_DFL && current.sa_handler != SIG_IGN;
    if (is_in_chain && has_handler) return;
    struct sigaction guard {};
    guard.sa_sigaction = on_sigbus;
    guard.sa_flags = SA_SIGINFO | SA_ONSTACK;
    sigaction(SIGBUS, &guard, &previous);
    is_in_chain = true;
}

bool has_substitute() { return substituted; }

void lift_sigbus_guard() {
    guarded = nullptr;
    struct sigaction current {};
    sigaction(SIGBUS, nullptr, &current);
    if ((current.sa_flags & SA_SIGINFO) != 0 && current.sa_sigaction == on_sigbus) {
        sigaction(SIGBUS, &previous, nullptr);
        is_in_chain = false;
    }
}

}  // namespace kestrel::logging
