#include "tests/ipc/interruption.h"

#include <atomic>
#include <csignal>

namespace kestrel::testing {
namespace {

constinit std::atomic<int> handled = 0;

}  // namespace

void interrupt(pthread_t thread) {
    struct sigaction action {};
    action.sa_handler = [](int) { ++handled; };
    sigaction(SIGUSR1, &action, nullptr);
    pthread_kill(thread, SIGUSR1);
}

int interruptions() { return handled; }

}  // namespace kestrel::testing
