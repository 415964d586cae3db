// A lock that cannot be read or acquired.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/time.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <iostream>
#include <iterator>

#include "base/file_descriptor.h"
#include "common/LinuxCommonUtils.h"
#include "tests/common/child_process.h"
#include "tests/common/lock_fixture.h"

namespace kestrel::testing {
namespace {

namespace fs = std::filesystem;

class LockFailure : public LockTest {};

TEST_F(LockFailure, ReportsAnUnreadableFile) {
    write_lock(lock_bytes(-1));
    fs::permissions(lock_, fs::perms{0});
    EXPECT_EQ(as_ordinary_user([] { print_lock_state("catalook"); }),
              (Output{"running", advice()}));
}

TEST_F(LockFailure, ReportsAFileThatCannotBeCreated) {
    fs::permissions(scratch_, fs::perms{0555});
    EXPECT_EQ(as_ordinary_user([] { print_lock_state("catalook"); }),
              (Output{"running", "error opening write : Permission denied\n" + advice()}));
}

TEST_F(LockFailure, ReportsAnUnwritableStaleFile) {
    write_lock(lock_bytes(-1));
    fs::permissions(lock_, fs::perms{0444});
    EXPECT_EQ(as_ordinary_user([] { print_lock_state("catalook"); }),
              (Output{"running", "error opening write : Permission denied\n" + advice()}));
    EXPECT_EQ(file_content(lock_), lock_bytes(-1));
}

TEST_F(LockFailure, ReportsADirectory) {
    fs::create_directory(lock_);
    EXPECT_EQ(in_child([] { print_lock_state("catalook"); }),
              (Output{"running", "reading error for lock file: Is a directory\n" + advice()}));
}

TEST_F(LockFailure, ReportsAFileThatCannotGrow) {
    const Output output = in_child([] {
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit nothing{0, 0};
        setrlimit(RLIMIT_FSIZE, &nothing);
        print_lock_state("catalook");
    });
    EXPECT_EQ(output, (Output{"running", "unable to write in file :File too large\n" + advice()}));
    EXPECT_EQ(file_content(lock_), "");
}

TEST_F(LockFailure, ReportsAnInterruptedWait) {
    write_lock(lock_bytes(-1));
    const FileDescriptor file(open(lock_.c_str(), O_WRONLY | O_CLOEXEC));
    ASSERT_EQ(__real_flock(file.get(), LOCK_EX), 0);
    const Output output = in_child([] {
        struct sigaction action {};
        action.sa_handler = [](int) {};
        sigaction(SIGALRM, &action, nullptr);
        // Repeatedly: the first signal may arrive before the wait.
        const itimerval soon{{0, 10'000}, {0, 10'000}};
        setitimer(ITIMER_REAL, &soon, nullptr);
        print_lock_state("catalook");
    });
    EXPECT_EQ(output, (Output{"running", "locking error: Interrupted system call\n" + advice()}));
    EXPECT_EQ(file_content(lock_), lock_bytes(-1));
}

TEST_F(LockFailure, ReportsAFailedLockBeforeWriting) {
    EXPECT_EQ(in_child([] {
                  on_flock = [](int, int) { return ENOLCK; };
                  print_lock_state("catalook");
              }),
              (Output{"running", "locking error: No locks available\n" + advice()}));
    EXPECT_EQ(file_content(lock_), "");
}

TEST_F(LockFailure, LeavesNoFileOpen) {
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

}  // namespace
}  // namespace kestrel::testing
