// Lock names are parts of paths, which are resolved without following links.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "common/LinuxCommonUtils.h"
#include "tests/common/child_process.h"
#include "tests/common/lock_fixture.h"

namespace kestrel::testing {
namespace {

namespace fs = std::filesystem;

class LockName : public LockTest {
  protected:
    std::string elsewhere_ = home_.path() + "/elsewhere";

    static Output ask(const std::string& name) {
        return in_child([&] { print_lock_state(name); });
    }
};

TEST_F(LockName, EndsAtItsFirstNul) {
    using namespace std::string_literals;
    EXPECT_FALSE(LinuxCommonUtils::IsAnotherInstanceRunning("catalook\0/../x"s));
    EXPECT_EQ(file_content(lock_), lock_bytes(getpid()));
    EXPECT_FALSE(LinuxCommonUtils::IsAnotherInstanceRunning(".\0"s));
    EXPECT_TRUE(fs::exists(scratch_ + "/...lock"));
}

TEST_F(LockName, WithoutSlashStaysInTheScratchDirectory) {
    for (const std::string name : {"", ".", "..", "ein Name", "Schlüssel", "new\nline"}) {
        EXPECT_FALSE(LinuxCommonUtils::IsAnotherInstanceRunning(name));
        EXPECT_EQ(file_content(scratch_ + "/." + name + ".lock"), lock_bytes(getpid()));
    }
}

TEST_F(LockName, ReportsATooLongName) {
    const std::string name(256, 'n');
    EXPECT_EQ(ask(name), (Output{"running", advice(name)}));
}

TEST_F(LockName, WithASlashNamesAFileInADirectory) {
    fs::create_directories(scratch_ + "/.a/b");
    for (const std::string name : {"a/c", "a/b/c", "a//b/./d", "a/b/../e", "a/", "/"}) {
        const std::string path = scratch_ + "/." + name + ".lock";
        EXPECT_FALSE(LinuxCommonUtils::IsAnotherInstanceRunning(name)) << name;
        EXPECT_EQ(file_content(path), lock_bytes(getpid())) << name;
        EXPECT_TRUE(LinuxCommonUtils::IsAnotherInstanceRunning(name)) << name;
    }
}

TEST_F(LockName, WithDotsMayLeaveTheScratchDirectory) {
    EXPECT_FALSE(LinuxCommonUtils::IsAnotherInstanceRunning("/../../outside"));
    EXPECT_EQ(file_content(home_.path() + "/outside.lock"), lock_bytes(getpid()));
}

// ".." is the parent of the directory itself, not of a link to it.
TEST_F(LockName, WithDotsLeavesTheTargetOfTheUsersLink) {
    fs::remove(scratch_);
    fs::create_directories(elsewhere_ + "/scratch");
    fs::create_directory_symlink(elsewhere_ + "/scratch", scratch_);
    EXPECT_FALSE(LinuxCommonUtils::IsAnotherInstanceRunning("/../outside"));
    EXPECT_EQ(file_content(elsewhere_ + "/outside.lock"), lock_bytes(getpid()));
}

TEST_F(LockName, ReportsAMissingDirectory) {
    for (const std::string name : {"a/b", "catalook/", "a/../b", "/etc/a/b"}) {
        EXPECT_EQ(ask(name),
                  (Output{"running",
                          "error opening write : No such file or directory\n" + advice(name)}));
    }
    EXPECT_TRUE(fs::is_empty(scratch_));
}

TEST_F(LockName, ReportsAFileInsteadOfADirectory) {
    std::ofstream(scratch_ + "/.a") << "precious";
    EXPECT_EQ(ask("a/b"), (Output{"running", advice("a/b")}));
    EXPECT_EQ(file_content(scratch_ + "/.a"), "precious");
}

TEST_F(LockName, OpensFilesInASearchOnlyDirectory) {
    fs::create_directory(scratch_ + "/.a");
    std::ofstream(scratch_ + "/.a/b.lock") << "st";
    fs::permissions(scratch_ + "/.a/b.lock", fs::perms{0666});
    fs::permissions(scratch_ + "/.a", fs::perms{0111});
    EXPECT_EQ(as_ordinary_user([] { print_lock_state("a/b"); }), (Output{"owner", ""}));
}

TEST_F(LockName, FollowsNoLinkInItsDirectories) {
    fs::create_directory(elsewhere_);
    fs::create_directory(scratch_ + "/.a");
    fs::create_directory_symlink(elsewhere_, scratch_ + "/.link");
    fs::create_directory_symlink(elsewhere_, scratch_ + "/.a/link");
    for (const std::string name : {"link/b", "a/link/b", "link/../b", "link/"}) {
        EXPECT_EQ(ask(name), (Output{"running", advice(name)}));
    }
    EXPECT_TRUE(fs::is_empty(elsewhere_));
    EXPECT_FALSE(fs::exists(home_.path() + "/b.lock"));
    EXPECT_FALSE(fs::exists(scratch_ + "/b.lock"));
}

TEST_F(LockName, FollowsNoLinkAtItsEnd) {
    std::ofstream(elsewhere_) << "precious";
    fs::create_directory(scratch_ + "/.a");
    fs::create_symlink(elsewhere_, scratch_ + "/.a/b.lock");
    EXPECT_EQ(ask("a/b"), (Output{"running", advice("a/b")}));
    EXPECT_EQ(file_content(elsewhere_), "precious");
}

}  // namespace
}  // namespace kestrel::testing
