#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <limits>
#include <memory>
#include <sstream>
#include <vector>

#include "common/LinuxCommonUtils.h"
#include "common/file_descriptor.h"
#include "tests/support/temporary_directory.h"
#include "tests/utilities/child_process.h"
#include "tests/utilities/scoped_variable.h"

namespace fs = std::filesystem;
using kestrel::testing::as_ordinary_user;
using kestrel::testing::in_child;
using kestrel::testing::is_root;
using kestrel::testing::Output;
using kestrel::testing::RunningProgram;
using kestrel::testing::ScopedVariable;
using kestrel::testing::TemporaryDirectory;
using kestrel::utilities::FileDescriptor;

namespace {

// Seen before each kill and flock of the code under test; a result other than 0 is an error number
// that the call fails with.
std::function<void(pid_t)> on_kill;
std::function<int(int fd, int operation)> on_flock;

}  // namespace

extern "C" int __real_kill(pid_t, int);
extern "C" int __wrap_kill(pid_t process, int signal) {
    if (on_kill) on_kill(process);
    return __real_kill(process, signal);
}

extern "C" int __real_flock(int, int);
extern "C" int __wrap_flock(int fd, int operation) {
    errno = on_flock ? on_flock(fd, operation) : 0;
    return errno == 0 ? __real_flock(fd, operation) : -1;
}

namespace {

std::string bytes_of(std::int32_t id) {
    const auto bytes = std::bit_cast<std::array<char, sizeof id>>(id);
    return {bytes.begin(), bytes.end()};
}

std::string content(const std::string& path) {
    std::ostringstream text;
    text << std::ifstream(path).rdbuf();
    return text.str();
}

// The id of a process that was there and is no longer.
pid_t ended_process() {
    const pid_t child = fork();
    if (child == 0) _exit(0);
    waitpid(child, nullptr, 0);
    return child;
}

void print_state(const std::string& name) {
    std::cout << (LinuxCommonUtils::IsAnotherInstanceRunning(name) ? "running" : "owner");
}

class SingleInstanceLock : public ::testing::Test {
  protected:
    TemporaryDirectory home_;
    ScopedVariable home_variable_{"HOME", home_.path()};
    std::string scratch_ = home_.path() + "/.QUOClient/.tmp";
    std::string lock_ = scratch_ + "/.catalook.lock";

    void SetUp() override {
        fs::permissions(home_.path(), fs::perms{0755});
        fs::create_directories(scratch_);
    }
    void TearDown() override {
        on_kill = nullptr;
        on_flock = nullptr;
    }

    void write_lock(const std::string& bytes) const { std::ofstream(lock_) << bytes; }

    std::string advice(const std::string& name = "catalook") const {
        return "Failed to check if another Key Warden exist\nPlease remove" + scratch_ + "/." +
               name + ".lock file and kill any '" + name + "' which is running.\n";
    }
};

TEST_F(SingleInstanceLock, WithoutFileTheCallerBecomesTheOwner) {
    const Output output = in_child([] {
        umask(0);
        print_state("catalook");
        std::cout << ' ' << getpid();
    });
    std::istringstream words(output.out);
    std::string state;
    pid_t process = 0;
    words >> state >> process;
    EXPECT_EQ(state, "owner");
    EXPECT_EQ(output.err, "");
    EXPECT_EQ(content(lock_), bytes_of(process));
    EXPECT_EQ(fs::status(lock_).permissions(), fs::perms{0700});
}

TEST_F(SingleInstanceLock, SecondProcessWithTheSameCommandLineIsRefused) {
    const RunningProgram first({INSTANCE_PROBE, "catalook"});
    EXPECT_EQ(first.read_line(), "owner");
    const RunningProgram second({INSTANCE_PROBE, "catalook"});
    EXPECT_EQ(second.read_line(), "running");
    EXPECT_EQ(content(lock_), bytes_of(first.pid()));
}

TEST_F(SingleInstanceLock, ProcessWithAnotherCommandLineTakesOver) {
    const RunningProgram first({INSTANCE_PROBE, "catalook", "one"});
    EXPECT_EQ(first.read_line(), "owner");
    const RunningProgram second({INSTANCE_PROBE, "catalook", "two"});
    EXPECT_EQ(second.read_line(), "owner");
    EXPECT_EQ(content(lock_), bytes_of(second.pid()));
}

// The NULs between arguments count: "a b" is not "a", "b", and a longer line is not its beginning.
TEST_F(SingleInstanceLock, CommandLinesAreComparedWhole) {
    const RunningProgram first({INSTANCE_PROBE, "catalook", "a", "b"});
    EXPECT_EQ(first.read_line(), "owner");
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{"a b"}, {"a", "c"}, {"a"}, {"a", "b", ""}}) {
        write_lock(bytes_of(first.pid()));
        std::vector<std::string> other = {INSTANCE_PROBE, "catalook"};
        other.insert(other.end(), arguments.begin(), arguments.end());
        EXPECT_EQ(RunningProgram(other).read_line(), "owner") << ::testing::PrintToString(other);
    }
}

TEST_F(SingleInstanceLock, LocksOfOtherNamesDoNotMatter) {
    const RunningProgram first({INSTANCE_PROBE, "catalook"});
    EXPECT_EQ(first.read_line(), "owner");
    EXPECT_EQ(in_child([] { print_state("another"); }).out, "owner");
}

TEST_F(SingleInstanceLock, OwnerThatAsksAgainIsRefused) {
    const Output output = in_child([] {
        print_state("catalook");
        print_state("catalook");
    });
    EXPECT_EQ(output, (Output{"ownerrunning", ""}));
}

TEST_F(SingleInstanceLock, EndedProcessIsReplaced) {
    write_lock(bytes_of(ended_process()));
    EXPECT_FALSE(LinuxCommonUtils::IsAnotherInstanceRunning("catalook"));
    EXPECT_EQ(content(lock_), bytes_of(getpid()));
}

TEST_F(SingleInstanceLock, ProcessThatTheUserMayNotSignalIsReplaced) {
    if (!is_root()) GTEST_SKIP() << "needs a process of another user";
    fs::permissions(scratch_, fs::perms{0777});
    write_lock(bytes_of(getpid()));
    fs::permissions(lock_, fs::perms{0666});
    EXPECT_EQ(as_ordinary_user([] { print_state("catalook"); }), (Output{"owner", ""}));
}

TEST_F(SingleInstanceLock, FilesThatNameNoProcessAreStaleAndNeverProbed) {
    std::vector<pid_t> probed;
    on_kill = [&](pid_t process) { probed.push_back(process); };
    const std::string self = bytes_of(getpid());
    for (const std::string& bytes :
         {std::string(), self.substr(0, 1), self.substr(0, 2), self.substr(0, 3), bytes_of(0),
          bytes_of(-1), bytes_of(-getpgrp()), bytes_of(-getpid()),
          bytes_of(std::numeric_limits<std::int32_t>::min())}) {
        write_lock(bytes);
        EXPECT_FALSE(LinuxCommonUtils::IsAnotherInstanceRunning("catalook"));
        EXPECT_EQ(content(lock_), self);
    }
    EXPECT_EQ(probed, std::vector<pid_t>());
}

TEST_F(SingleInstanceLock, AbsurdProcessIdIsStale) {
    write_lock(bytes_of(std::numeric_limits<std::int32_t>::max()));
    EXPECT_FALSE(LinuxCommonUtils::IsAnotherInstanceRunning("catalook"));
    EXPECT_EQ(content(lock_), bytes_of(getpid()));
}

TEST_F(SingleInstanceLock, WhatFollowsTheFirstFourBytesIsLeftAlone) {
    write_lock(bytes_of(-1) + "tail");
    EXPECT_FALSE(LinuxCommonUtils::IsAnotherInstanceRunning("catalook"));
    EXPECT_EQ(content(lock_), bytes_of(getpid()) + "tail");
}

// The lock is held here until the code under test is seen to find it so; only then the file gets
// the id of a running instance. Without waiting for the lock, the stale id would be read.
TEST_F(SingleInstanceLock, WaitsForTheLockBeforeReading) {
    write_lock(bytes_of(-1));
    const FileDescriptor file(open(lock_.c_str(), O_WRONLY | O_CLOEXEC));
    ASSERT_EQ(__real_flock(file.get(), LOCK_EX), 0);
    std::array<int, 2> contended{};
    ASSERT_EQ(pipe(contended.data()), 0);

    const pid_t holder = getpid();
    const pid_t child = fork();
    if (child == 0) {
        on_flock = [&](int fd, int operation) {
            const bool waits = operation == LOCK_EX && __real_flock(fd, LOCK_EX | LOCK_NB) == -1;
            return write(contended[1], waits ? "w" : "-", 1) == 1 ? 0 : EIO;
        };
        _exit(LinuxCommonUtils::IsAnotherInstanceRunning("catalook") ? 1 : 0);
    }
    char seen = '\0';
    ASSERT_EQ(read(contended[0], &seen, 1), 1);
    EXPECT_EQ(seen, 'w');
    ASSERT_EQ(pwrite(file.get(), bytes_of(holder).data(), 4, 0), 4);
    ASSERT_EQ(__real_flock(file.get(), LOCK_UN), 0);
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_EQ(WEXITSTATUS(status), 1);
    EXPECT_EQ(content(lock_), bytes_of(holder));
    close(contended[0]);
    close(contended[1]);
}

TEST_F(SingleInstanceLock, LeavesTheFileUnlocked) {
    EXPECT_FALSE(LinuxCommonUtils::IsAnotherInstanceRunning("catalook"));
    const FileDescriptor file(open(lock_.c_str(), O_RDONLY | O_CLOEXEC));
    EXPECT_EQ(__real_flock(file.get(), LOCK_EX | LOCK_NB), 0);
}

// A child forked meanwhile shares the open file, and would keep the lock if it were only closed.
TEST_F(SingleInstanceLock, EveryLockIsGivenBackExpressly) {
    std::vector<int> operations;
    on_flock = [&](int, int operation) {
        operations.push_back(operation);
        return 0;
    };
    write_lock(bytes_of(-1));
    EXPECT_FALSE(LinuxCommonUtils::IsAnotherInstanceRunning("catalook"));
    EXPECT_EQ(operations, (std::vector<int>{LOCK_EX, LOCK_UN, LOCK_EX, LOCK_UN}));
}

// All start at once, with one command line. More than one may win, but never none; whoever the file
// names afterwards won, and a later start sees it.
TEST_F(SingleInstanceLock, OfSimultaneousStartsAtLeastOneWins) {
    for (int round = 0; round < 20; ++round) {
        fs::remove(lock_);
        std::vector<std::unique_ptr<RunningProgram>> starts;
        for (int i = 0; i < 4; ++i) {
            starts.push_back(std::make_unique<RunningProgram>(
                std::vector<std::string>{INSTANCE_PROBE, "catalook"}));
        }
        std::vector<std::string> owners;
        for (const auto& start : starts) {
            if (start->read_line() == "owner") owners.push_back(bytes_of(start->pid()));
        }
        ASSERT_NE(std::ranges::find(owners, content(lock_)), owners.end());
        EXPECT_EQ(RunningProgram({INSTANCE_PROBE, "catalook"}).read_line(), "running");
    }
}

TEST_F(SingleInstanceLock, UnreadableFileIsAFailure) {
    write_lock(bytes_of(-1));
    fs::permissions(lock_, fs::perms{0});
    EXPECT_EQ(as_ordinary_user([] { print_state("catalook"); }), (Output{"running", advice()}));
}

TEST_F(SingleInstanceLock, FileThatCannotBeMadeIsAFailure) {
    fs::permissions(scratch_, fs::perms{0555});
    EXPECT_EQ(as_ordinary_user([] { print_state("catalook"); }),
              (Output{"running", "error opening write : Permission denied\n" + advice()}));
}

TEST_F(SingleInstanceLock, StaleFileThatMayNotBeWrittenIsAFailure) {
    write_lock(bytes_of(-1));
    fs::permissions(lock_, fs::perms{0444});
    EXPECT_EQ(as_ordinary_user([] { print_state("catalook"); }),
              (Output{"running", "error opening write : Permission denied\n" + advice()}));
    EXPECT_EQ(content(lock_), bytes_of(-1));
}

TEST_F(SingleInstanceLock, DirectoryInItsPlaceIsAFailure) {
    fs::create_directory(lock_);
    EXPECT_EQ(in_child([] { print_state("catalook"); }),
              (Output{"running", "reading error for lock file: Is a directory\n" + advice()}));
}

TEST_F(SingleInstanceLock, FileThatMayNotGrowIsAFailure) {
    const Output output = in_child([] {
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit nothing{0, 0};
        setrlimit(RLIMIT_FSIZE, &nothing);
        print_state("catalook");
    });
    EXPECT_EQ(output, (Output{"running", "unable to write in file :File too large\n" + advice()}));
    EXPECT_EQ(content(lock_), "");
}

TEST_F(SingleInstanceLock, InterruptedWaitIsAFailure) {
    write_lock(bytes_of(-1));
    const FileDescriptor file(open(lock_.c_str(), O_WRONLY | O_CLOEXEC));
    ASSERT_EQ(__real_flock(file.get(), LOCK_EX), 0);
    const Output output = in_child([] {
        struct sigaction action {};
        action.sa_handler = [](int) {};
        sigaction(SIGALRM, &action, nullptr);
        // Again and again, as the first may come before the wait.
        const itimerval soon{{0, 10'000}, {0, 10'000}};
        setitimer(ITIMER_REAL, &soon, nullptr);
        print_state("catalook");
    });
    EXPECT_EQ(output, (Output{"running", "locking error: Interrupted system call\n" + advice()}));
    EXPECT_EQ(content(lock_), bytes_of(-1));
}

TEST_F(SingleInstanceLock, LockThatFailsBeforeWritingIsAFailure) {
    EXPECT_EQ(in_child([] {
                  on_flock = [](int, int) { return ENOLCK; };
                  print_state("catalook");
              }),
              (Output{"running", "locking error: No locks available\n" + advice()}));
    EXPECT_EQ(content(lock_), "");
}

TEST_F(SingleInstanceLock, LockThatFailsLeavesNoFileOpen) {
    const Output output = in_child([] {
        on_flock = [](int, int) { return ENOLCK; };
        if (std::freopen("/dev/null", "w", stderr) == nullptr) return;
        const auto open_files = [] {
            return std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator());
        };
        const auto before = open_files();
        for (int i = 0; i < 300; ++i) LinuxCommonUtils::IsAnotherInstanceRunning("catalook");
        std::cout << open_files() - before;
    });
    EXPECT_EQ(output.out, "0");
}

TEST_F(SingleInstanceLock, SlashInTheNameIsAFailureAndTouchesNothing) {
    fs::create_directory(scratch_ + "/.");
    for (const std::string name : {"a/b", "/", "/../../outside", "catalook/"}) {
        EXPECT_EQ(in_child([&] { print_state(name); }), (Output{"running", advice(name)}));
    }
    EXPECT_TRUE(fs::is_empty(scratch_));
    EXPECT_FALSE(fs::exists(home_.path() + "/outside.lock"));
}

TEST_F(SingleInstanceLock, NameEndsAtItsFirstNul) {
    using namespace std::string_literals;
    EXPECT_FALSE(LinuxCommonUtils::IsAnotherInstanceRunning("catalook\0/../x"s));
    EXPECT_EQ(content(lock_), bytes_of(getpid()));
    EXPECT_FALSE(LinuxCommonUtils::IsAnotherInstanceRunning(".\0"s));
    EXPECT_TRUE(fs::exists(scratch_ + "/...lock"));
}

TEST_F(SingleInstanceLock, AnyOtherNameStaysInTheScratchDirectory) {
    for (const std::string name : {"", ".", "..", "ein Name", "Schlüssel", "new\nline"}) {
        EXPECT_FALSE(LinuxCommonUtils::IsAnotherInstanceRunning(name));
        EXPECT_EQ(content(scratch_ + "/." + name + ".lock"), bytes_of(getpid()));
    }
}

TEST_F(SingleInstanceLock, NameTooLongForAFileIsAFailure) {
    const std::string name(256, 'n');
    EXPECT_EQ(in_child([&] { print_state(name); }), (Output{"running", advice(name)}));
}

TEST_F(SingleInstanceLock, SymbolicLinkIsNotFollowed) {
    const std::string victim = home_.path() + "/victim";
    std::ofstream(victim) << "precious";
    for (const std::string& target : {victim, home_.path() + "/missing"}) {
        fs::create_symlink(target, lock_);
        EXPECT_EQ(in_child([] { print_state("catalook"); }), (Output{"running", advice()}));
        fs::remove(lock_);
    }
    EXPECT_EQ(content(victim), "precious");
    EXPECT_FALSE(fs::exists(home_.path() + "/missing"));
}

TEST_F(SingleInstanceLock, WithoutHomeTheLockLiesInTmp) {
    const std::string name = "kestrel-test-" + std::to_string(getpid());
    const ScopedVariable home("HOME", "");
    EXPECT_FALSE(LinuxCommonUtils::IsAnotherInstanceRunning(name));
    EXPECT_EQ(content("/tmp/." + name + ".lock"), bytes_of(getpid()));
    fs::remove("/tmp/." + name + ".lock");
}

TEST_F(SingleInstanceLock, WithoutClientDirectoryTheLockLiesInTheUsersDirectoryBelowTmp) {
    const std::string user = "kestrel-test-user-" + std::to_string(getpid());
    const ScopedVariable home("HOME", home_.path() + "/missing");
    const ScopedVariable user_variable("USER", user);
    EXPECT_EQ(in_child([] { print_state("catalook"); }).out, "owner");
    EXPECT_TRUE(fs::exists("/tmp/" + user + "/.catalook.lock"));
    fs::remove_all("/tmp/" + user);
}

}  // namespace
