// Concurrent processes and threads.

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <csignal>
#include <map>
#include <string>
#include <thread>
#include <vector>

#include "log/zynlog.h"
#include "log/zynlog_config.h"
#include "tests/log/bytes.h"
#include "tests/log/fake_daemon.h"

namespace {

using kestrel::kLogWebkit;
using kestrel::testing::DaemonConnection;
using kestrel::testing::FakeDaemon;
using kestrel::testing::u16_at;

// Another process that logs the lines "1", "2", ... at INFO on request.
class OtherProcess {
  public:
    OtherProcess() {
        if (pipe(commands_.data()) == -1 || pipe(answers_.data()) == -1) std::abort();
        pid_ = fork();
        if (pid_ == 0) run();
    }
    ~OtherProcess() {
        close(commands_[1]);
        close(commands_[0]);
        waitpid(pid_, nullptr, 0);
    }
    OtherProcess(const OtherProcess&) = delete;
    OtherProcess& operator=(const OtherProcess&) = delete;

    // Returns after the client has handled the line.
    void log_a_line() {
        char byte = 0;
        ASSERT_EQ(write(commands_[1], &byte, 1), 1);
        ASSERT_EQ(read(answers_[0], &byte, 1), 1);
    }

  private:
    [[noreturn]] void run() {
        close(commands_[1]);
        ZynLogInit();
        char byte = 0;
        for (int line = 1; read(commands_[0], &byte, 1) == 1; ++line) {
            __ZynTrace(kLogWebkit, kestrel::kInfo, "", "", 0, "%d", line);
            if (write(answers_[1], &byte, 1) != 1) break;
        }
        _exit(0);
    }

    std::array<int, 2> commands_{};
    std::array<int, 2> answers_{};
    pid_t pid_ = -1;
};

TEST(TwoProcesses, ShareLevelsImmediately) {
    const FakeDaemon daemon;
    OtherProcess other;
    DaemonConnection connection = daemon.accept();
    connection.read_message();
    ASSERT_EQ(ZynLogInitConfigOnly(), 1);

    other.log_a_line();
    EXPECT_TRUE(connection.is_quiet());
    ZynLogSetCurrentLevel(kLogWebkit, 2);
    other.log_a_line();
    EXPECT_EQ(connection.read_message().substr(26), std::string("2\0", 2));
    ZynLogSetCurrentLevel(kLogWebkit, 3);
    other.log_a_line();
    EXPECT_TRUE(connection.is_quiet());
    ZynLogSetCurrentLevel(0, 1);
    ZynLogSetCurrentLevel(kLogWebkit, 0);
    other.log_a_line();
    EXPECT_EQ(connection.read_message().substr(26), std::string("4\0", 2));
}

constexpr int kThreads = 8;
constexpr int kLinesPerThread = 500;

// Lengths up to the maximum, so that records of every size are mixed.
std::string line_text(int thread, int line) {
    const auto length = static_cast<std::size_t>(line * 8'191 / kLinesPerThread);
    std::string text = std::to_string(thread) + " " + std::to_string(line) + " ";
    text.resize(std::max(text.size(), length), static_cast<char>('a' + thread));
    return text;
}

TEST(EightThreads, LoseAndTearNoRecord) {
    const FakeDaemon daemon;
    ZynLogInit();
    DaemonConnection connection = daemon.accept();
    connection.read_message();

    std::vector<std::thread> threads;
    for (int thread = 0; thread < kThreads; ++thread) {
        threads.emplace_back([thread] {
            for (int line = 0; line < kLinesPerThread; ++line) {
                __ZynTrace(kLogWebkit, kestrel::kError, "", "", 0, "%s",
                           line_text(thread, line).c_str());
            }
        });
    }

    std::vector<std::string> records(kThreads * kLinesPerThread);
    for (std::string& record : records) record = connection.read_message();
    for (std::thread& thread : threads) thread.join();

    std::map<int, int> next_line;
    for (const std::string& bytes : records) {
        ASSERT_GT(bytes.size(), 26U);
        ASSERT_EQ(u16_at(bytes, 2), 1U);
        const std::string text = bytes.substr(26, bytes.size() - 27);
        const int thread = text[0] - '0';
        ASSERT_EQ(text, line_text(thread, next_line[thread]));
        ++next_line[thread];
    }
    EXPECT_TRUE(connection.is_quiet());
    EXPECT_EQ(next_line.size(), 8U);
}

TEST(EightThreads, AreSafeIfTheDaemonCloses) {
    signal(SIGPIPE, SIG_IGN);
    const FakeDaemon daemon;
    ZynLogInit();
    DaemonConnection connection = daemon.accept();

    std::atomic<int> writing = 0;
    std::vector<std::thread> threads;
    for (int thread = 0; thread < kThreads; ++thread) {
        threads.emplace_back([&] {
            ++writing;
            for (int line = 0; line < kLinesPerThread; ++line) {
                __ZynTrace(kLogWebkit, kestrel::kError, "", "", 0, "%s",
                           line_text(0, line).c_str());
            }
        });
    }
    while (writing < kThreads) std::this_thread::yield();
    connection.read_message();
    connection.hang_up();
    for (std::thread& thread : threads) thread.join();
    // The descriptor's number is free for reuse, and no line is written to it.
    std::array<int, 2> pipe_ends{};
    ASSERT_EQ(pipe(pipe_ends.data()), 0);
    __ZynTrace(kLogWebkit, kestrel::kError, "", "", 0, "to syslog");
    pollfd waiting{pipe_ends[0], POLLIN, 0};
    EXPECT_EQ(poll(&waiting, 1, 0), 0);
}

TEST(EightThreads, AreSafeWhileSettingsChange) {
    ZynLogInit();
    std::vector<std::thread> threads;
    for (int thread = 0; thread < kThreads; ++thread) {
        threads.emplace_back([thread] {
            for (std::uint32_t round = 0; round < 200; ++round) {
                ZynLogSetCurrentLevel(kLogWebkit, round % 8);
                ZynLogEnableFlags(1U << (16 + thread));
                ZynLogSetSessionMax(round);
                __ZynTrace(kLogWebkit, kestrel::kInfo, "", "", 0, "x");
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    std::uint32_t flags = 0;
    ZynLogGetCurrentFlags(&flags);
    EXPECT_EQ(flags, 0x00ff'062fU);
}

// A thread may still log while the process exits.
TEST(EightThreads, AreSafeDuringAShutdown) {
    const FakeDaemon daemon;
    ZynLogInit();
    DaemonConnection connection = daemon.accept();
    std::atomic<int> writing = 0;
    std::atomic<bool> stop = false;
    std::vector<std::thread> threads;
    for (int thread = 0; thread < kThreads; ++thread) {
        threads.emplace_back([&] {
            ++writing;
            while (!stop) {
                __ZynTrace(kLogWebkit, kestrel::kInfo, "", "", 0, "suppressed");
                ZynLogGetWorkingLevel(kestrel::kLogKestrelExtension);
            }
        });
    }
    while (writing < kThreads) std::this_thread::yield();
    ZynLogShutdown();
    EXPECT_EQ(ZynLogGetWorkingLevel(0), kestrel::kLogFailure);
    stop = true;
    for (std::thread& thread : threads) thread.join();
}

}  // namespace
