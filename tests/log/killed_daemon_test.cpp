// A log daemon in a separate process that is killed, and its successor.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <csignal>
#include <cstdlib>
#include <numeric>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "log/zynlog.h"
#include "tests/log/fake_daemon.h"
#include "tests/log/machine.h"
#include "tests/log/syslog_recorder.h"

namespace {

using kestrel::testing::DaemonConnection;
using kestrel::testing::FakeDaemon;
using kestrel::testing::syslog_calls;
using testing::ElementsAre;
using testing::IsEmpty;

// Serves one process after the other, and reports the number in each line.
class DaemonProcess {
  public:
    // Returns when it listens.
    DaemonProcess() {
        if (pipe(numbers_.data()) == -1) std::abort();
        pid_ = fork();
        if (pid_ == 0) run();
        close(numbers_[1]);
        if (next_number() != kListens) std::abort();
    }
    ~DaemonProcess() {
        die();
        close(numbers_[0]);
    }
    DaemonProcess(const DaemonProcess&) = delete;
    DaemonProcess& operator=(const DaemonProcess&) = delete;

    // Leaves its socket file behind.
    void die() {
        if (pid_ == -1) return;
        kill(pid_, SIGKILL);
        int status = 0;
        EXPECT_TRUE(waitpid(pid_, &status, 0) == pid_ && WIFSIGNALED(status));
        pid_ = -1;
    }

    // The number of the next line received; nothing once it is dead and all have been reported.
    std::optional<int> next_number() const {
        int number = 0;
        if (read(numbers_[0], &number, sizeof number) != sizeof number) return std::nullopt;
        return number;
    }

  private:
    static constexpr int kListens = -1;

    void tell(int number) const {
        if (write(numbers_[1], &number, sizeof number) != sizeof number) _exit(1);
    }

    [[noreturn]] void run() const {
        close(numbers_[0]);
        unlink((kestrel::testing::client_directory() + "/.zynlogsocket").c_str());
        const FakeDaemon daemon;
        tell(kListens);
        for (;;) {
            DaemonConnection connection = daemon.accept();
            connection.read_message();
            while (!connection.is_closed()) {
                tell(std::atoi(connection.read_message().substr(26).c_str()));
            }
        }
    }

    std::array<int, 2> numbers_{};
    pid_t pid_ = -1;
};

void log_number(int number) {
    __ZynTrace(kestrel::kLogWebkit, kestrel::kError, "", "", 0, "%d", number);
}

std::string in_syslog(int number) { return "vsyslog(3, " + std::to_string(number) + ")"; }

class KilledDaemon : public testing::Test {
  protected:
    KilledDaemon() { signal(SIGPIPE, SIG_IGN); }
};

TEST_F(KilledDaemon, CostsOneLineAndSwitchesToSyslogEvenIfAnotherDaemonListens) {
    DaemonProcess first;
    ZynLogInit();
    kestrel::testing::clear_syslog_calls();
    log_number(1);
    EXPECT_EQ(first.next_number(), 1);
    first.die();
    const DaemonProcess second;
    log_number(2);
    EXPECT_THAT(syslog_calls(), IsEmpty());
    log_number(3);
    log_number(4);
    EXPECT_THAT(syslog_calls(), ElementsAre(in_syslog(3), in_syslog(4)));
    ZynLogShutdown();
    ZynLogInit();
    log_number(5);
    EXPECT_EQ(second.next_number(), 5);
}

// Lines that the daemon has not read are lost; all others are complete and in order.
TEST_F(KilledDaemon, LosesOnlyUnreadLines) {
    DaemonProcess daemon;
    ZynLogInit();
    kestrel::testing::clear_syslog_calls();
    std::atomic<bool> stop = false;
    int last = 0;
    std::thread writer([&] {
        while (!stop) log_number(++last);
    });
    std::vector<int> told;
    std::optional<int> number;
    while (told.size() < 1'000 && (number = daemon.next_number())) told.push_back(*number);
    daemon.die();
    while ((number = daemon.next_number())) told.push_back(*number);
    while (syslog_calls().size() < 1'000) std::this_thread::yield();
    stop = true;
    writer.join();

    std::vector<int> all(told.size());
    std::iota(all.begin(), all.end(), 1);
    ASSERT_EQ(told, all);
    ASSERT_GE(told.size(), 1'000U);
    const std::vector<std::string> calls = syslog_calls();
    const int first = last - static_cast<int>(calls.size()) + 1;
    EXPECT_GT(first, static_cast<int>(told.size()) + 1)
        << "at least the line that found the daemon gone is lost";
    for (int line = first; line <= last; ++line) {
        ASSERT_EQ(calls[static_cast<std::size_t>(line - first)], in_syslog(line));
    }
}

}  // namespace
