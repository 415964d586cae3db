// Ownership of the lock: simultaneous, successive and ended processes.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <filesystem>
#include <iostream>
#include <limits>
#include <memory>
#include <sstream>
#include <vector>

#include "base/file_descriptor.h"
#include "common/LinuxCommonUtils.h"
#include "tests/common/child_process.h"
#include "tests/common/lock_fixture.h"

namespace kestrel::testing {
namespace {

namespace fs = std::filesystem;

// The id of a process that has ended.
pid_t ended_process() {
    const pid_t child = fork();
    if (child == 0) _exit(0);
    waitpid(child, nullptr, 0);
    return child;
}

class SingleInstanceLock : public LockTest {};

TEST_F(SingleInstanceLock, IsAcquiredWithoutAFile) {
    const Output output = in_child([] {
        umask(0);
        print_lock_state("catalook");
        std::cout << ' ' << getpid();
    });
    std::istringstream words(output.out);
    std::string state;
    pid_t process = 0;
    words >> state >> process;
    EXPECT_EQ(state, "owner");
    EXPECT_EQ(output.err, "");
    EXPECT_EQ(file_content(lock_), lock_bytes(process));
    EXPECT_EQ(fs::status(lock_).permissions(), fs::perms{0700});
}

TEST_F(SingleInstanceLock, RejectsASecondProcessWithTheSameCommandLine) {
    const RunningProgram first({INSTANCE_PROBE, "catalook"});
    EXPECT_EQ(first.read_line(), "owner");
    const RunningProgram second({INSTANCE_PROBE, "catalook"});
    EXPECT_EQ(second.read_line(), "running");
    EXPECT_EQ(file_content(lock_), lock_bytes(first.pid()));
}

TEST_F(SingleInstanceLock, ProcessWithAnotherCommandLineTakesOver) {
    const RunningProgram first({INSTANCE_PROBE, "catalook", "one"});
    EXPECT_EQ(first.read_line(), "owner");
    const RunningProgram second({INSTANCE_PROBE, "catalook", "two"});
    EXPECT_EQ(second.read_line(), "owner");
    EXPECT_EQ(file_content(lock_), lock_bytes(second.pid()));
}

// The NULs between arguments count: "a b" is not "a", "b", and a longer line is not its beginning.
TEST_F(SingleInstanceLock, ComparesCompleteCommandLines) {
    const RunningProgram first({INSTANCE_PROBE, "catalook", "a", "b"});
    EXPECT_EQ(first.read_line(), "owner");
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{"a b"}, {"a", "c"}, {"a"}, {"a", "b", ""}}) {
        write_lock(lock_bytes(first.pid()));
        std::vector<std::string> other = {INSTANCE_PROBE, "catalook"};
        other.insert(other.end(), arguments.begin(), arguments.end());
        EXPECT_EQ(RunningProgram(other).read_line(), "owner") << ::testing::PrintToString(other);
    }
}

TEST_F(SingleInstanceLock, IgnoresLocksOfOtherNames) {
    const RunningProgram first({INSTANCE_PROBE, "catalook"});
    EXPECT_EQ(first.read_line(), "owner");
    EXPECT_EQ(in_child([] { print_lock_state("another"); }).out, "owner");
}

TEST_F(SingleInstanceLock, RejectsItsOwner) {
    const Output output = in_child([] {
        print_lock_state("catalook");
        print_lock_state("catalook");
    });
    EXPECT_EQ(output, (Output{"ownerrunning", ""}));
}

TEST_F(SingleInstanceLock, EndedProcessIsReplaced) {
    write_lock(lock_bytes(ended_process()));
    EXPECT_FALSE(LinuxCommonUtils::IsAnotherInstanceRunning("catalook"));
    EXPECT_EQ(file_content(lock_), lock_bytes(getpid()));
}

TEST_F(SingleInstanceLock, ProcessThatTheUserMayNotSignalIsReplaced) {
    if (!is_root()) GTEST_SKIP() << "needs a process of another user";
    fs::permissions(scratch_, fs::perms{0777});
    write_lock(lock_bytes(getpid()));
    fs::permissions(lock_, fs::perms{0666});
    EXPECT_EQ(as_ordinary_user([] { print_lock_state("catalook"); }), (Output{"owner", ""}));
}

TEST_F(SingleInstanceLock, FilesWithoutAProcessIdAreStaleAndNotProbed) {
    std::vector<pid_t> probed;
    on_kill = [&](pid_t process) { probed.push_back(process); };
    const std::string self = lock_bytes(getpid());
    for (const std::string& bytes :
         {std::string(), self.substr(0, 1), self.substr(0, 2), self.substr(0, 3), lock_bytes(0),
          lock_bytes(-1), lock_bytes(-getpgrp()), lock_bytes(-getpid()),
          lock_bytes(std::numeric_limits<std::int32_t>::min())}) {
        write_lock(bytes);
        EXPECT_FALSE(LinuxCommonUtils::IsAnotherInstanceRunning("catalook"));
        EXPECT_EQ(file_content(lock_), self);
    }
    EXPECT_EQ(probed, std::vector<pid_t>());
}

TEST_F(SingleInstanceLock, ImpossibleProcessIdIsStale) {
    write_lock(lock_bytes(std::numeric_limits<std::int32_t>::max()));
    EXPECT_FALSE(LinuxCommonUtils::IsAnotherInstanceRunning("catalook"));
    EXPECT_EQ(file_content(lock_), lock_bytes(getpid()));
}

TEST_F(SingleInstanceLock, KeepsBytesAfterTheFirstFour) {
    write_lock(lock_bytes(-1) + "tail");
    EXPECT_FALSE(LinuxCommonUtils::IsAnotherInstanceRunning("catalook"));
    EXPECT_EQ(file_content(lock_), lock_bytes(getpid()) + "tail");
}

// The test holds the lock until the code under test waits for it, and only then writes the id of a
// running instance. Without waiting, the code would read the stale id.
TEST_F(SingleInstanceLock, WaitsForTheLockBeforeReading) {
    write_lock(lock_bytes(-1));
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
    ASSERT_EQ(pwrite(file.get(), lock_bytes(holder).data(), 4, 0), 4);
    ASSERT_EQ(__real_flock(file.get(), LOCK_UN), 0);
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_EQ(WEXITSTATUS(status), 1);
    EXPECT_EQ(file_content(lock_), lock_bytes(holder));
    close(contended[0]);
    close(contended[1]);
}

TEST_F(SingleInstanceLock, LeavesTheFileUnlocked) {
    EXPECT_FALSE(LinuxCommonUtils::IsAnotherInstanceRunning("catalook"));
    const FileDescriptor file(open(lock_.c_str(), O_RDONLY | O_CLOEXEC));
    EXPECT_EQ(__real_flock(file.get(), LOCK_EX | LOCK_NB), 0);
}

// A child forked meanwhile shares the open file and would keep the lock if it were only closed.
TEST_F(SingleInstanceLock, UnlocksExplicitly) {
    std::vector<int> operations;
    on_flock = [&](int, int operation) {
        operations.push_back(operation);
        return 0;
    };
    write_lock(lock_bytes(-1));
    EXPECT_FALSE(LinuxCommonUtils::IsAnotherInstanceRunning("catalook"));
    EXPECT_EQ(operations, (std::vector<int>{LOCK_EX, LOCK_UN, LOCK_EX, LOCK_UN}));
}

// All start at once with the same command line. At least one wins; the process in the file is a
// winner, and later starts respect it.
TEST_F(SingleInstanceLock, AtLeastOneOfSimultaneousStartsWins) {
    for (int round = 0; round < 20; ++round) {
        fs::remove(lock_);
        std::vector<std::unique_ptr<RunningProgram>> starts;
        for (int i = 0; i < 4; ++i) {
            starts.push_back(std::make_unique<RunningProgram>(
                std::vector<std::string>{INSTANCE_PROBE, "catalook"}));
        }
        std::vector<std::string> owners;
        for (const auto& start : starts) {
            if (start->read_line() == "owner") owners.push_back(lock_bytes(start->pid()));
        }
        ASSERT_NE(std::ranges::find(owners, file_content(lock_)), owners.end());
        EXPECT_EQ(RunningProgram({INSTANCE_PROBE, "catalook"}).read_line(), "running");
    }
}

TEST_F(SingleInstanceLock, UsesTmpWithoutHome) {
    const std::string name = "kestrel-test-" + std::to_string(getpid());
    const ScopedVariable home("HOME", "");
    EXPECT_FALSE(LinuxCommonUtils::IsAnotherInstanceRunning(name));
    EXPECT_EQ(file_content("/tmp/." + name + ".lock"), lock_bytes(getpid()));
    fs::remove("/tmp/." + name + ".lock");
}

TEST_F(SingleInstanceLock, UsesTheUsersDirectoryBelowTmpWithoutClientDirectory) {
    const std::string user = "kestrel-test-user-" + std::to_string(getpid());
    const ScopedVariable home("HOME", home_.path() + "/missing");
    const ScopedVariable user_variable("USER", user);
    EXPECT_EQ(in_child([] { print_lock_state("catalook"); }).out, "owner");
    EXPECT_TRUE(fs::exists("/tmp/" + user + "/.catalook.lock"));
    fs::remove_all("/tmp/" + user);
}

}  // namespace
}  // namespace kestrel::testing
