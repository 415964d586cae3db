// Preloaded into WebKit's web process, sends it SIGALRM every millisecond; the handler does not
// restart system calls. The kernel would signal the main thread only, so each alarm is forwarded to
// all other threads. The file $HOME/alarms counts them.
#include <dirent.h>
#include <fcntl.h>
#include <semaphore.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <thread>

namespace {

std::atomic<std::uint64_t>* alarms = nullptr;
static_assert(std::atomic<std::uint64_t>::is_always_lock_free);
sem_t alarm_has_come;

void on_alarm(int /*signal*/, siginfo_t* info, void* /*context*/) {
    const int error = errno;
    if (info->si_code == SI_KERNEL) {
        ++*alarms;
        sem_post(&alarm_has_come);
    }
    errno = error;
}

[[noreturn]] void pass_alarms_on() {
    const pid_t process = getpid();
    const pid_t own_thread = gettid();
    DIR* const threads = opendir("/proc/self/task");
    for (;;) {
        while (sem_wait(&alarm_has_come) == -1) {
        }
        rewinddir(threads);
        while (const dirent* const entry = readdir(threads)) {
            const int thread = std::atoi(entry->d_name);
            if (thread == 0 || thread == process || thread == own_thread) continue;
            syscall(SYS_tgkill, process, thread, SIGALRM);
        }
    }
}

bool share_count(const std::string& path) {
    const int file = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (file == -1 || ftruncate(file, sizeof *alarms) == -1) return false;
    void* const shared = mmap(nullptr, sizeof *alarms, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    close(file);
    alarms = static_cast<std::atomic<std::uint64_t>*>(shared);
    return shared != MAP_FAILED;
}

[[gnu::constructor]] void begin() {
    const char* const home = std::getenv("HOME");
    if (home == nullptr || std::string_view(program_invocation_short_name) != "WebKitWebProcess" ||
        !share_count(std::string(home) + "/alarms")) {
        return;
    }
    sem_init(&alarm_has_come, 0, 0);
    struct sigaction action {};
    action.sa_sigaction = on_alarm;
    action.sa_flags = SA_SIGINFO;
    sigaction(SIGALRM, &action, nullptr);
    std::thread(pass_alarms_on).detach();
    const itimerval every_millisecond{{0, 1'000}, {0, 1'000}};
    setitimer(ITIMER_REAL, &every_millisecond, nullptr);
}

}  // namespace
