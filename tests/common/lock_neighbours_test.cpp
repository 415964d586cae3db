// Files that other users may have created at the path of the lock and of its directory.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "common/LinuxCommonUtils.h"
#include "tests/common/child_process.h"
#include "tests/common/lock_fixture.h"

namespace kestrel::testing {
namespace {

namespace fs = std::filesystem;

class LockNeighbours : public LockTest {
  protected:
    // A unique name, so that its directory below /tmp belongs to the test.
    std::string user_ = "kestrel-test-user-" + std::to_string(getpid());
    std::string fallback_ = "/tmp/" + user_;
    std::string victim_ = home_.path() + "/victim";

    void TearDown() override {
        fs::remove_all(fallback_);
        LockTest::TearDown();
    }

    // A failure without a message of its own.
    Output refused() const { return {"running", advice()}; }
};

// The directory of the lock if the home is unusable.
class LockBelowTmp : public LockNeighbours {
  protected:
    ScopedVariable missing_home_{"HOME", home_.path() + "/missing"};
    ScopedVariable user_variable_{"USER", user_};
};

void print_state() {
    alarm(20);  // a blocked call would wait forever
    print_lock_state("catalook");
}

TEST_F(LockNeighbours, SymbolicLinkIsNotFollowed) {
    std::ofstream(victim_) << "precious";
    for (const std::string& target : {victim_, home_.path() + "/missing"}) {
        fs::create_symlink(target, lock_);
        EXPECT_EQ(in_child(print_state), refused());
        fs::remove(lock_);
    }
    EXPECT_EQ(file_content(victim_), "precious");
    EXPECT_FALSE(fs::exists(home_.path() + "/missing"));
}

TEST_F(LockNeighbours, FifoIsRejectedWithoutBlocking) {
    ASSERT_EQ(mkfifo(lock_.c_str(), 0600), 0);
    EXPECT_EQ(in_child(print_state), refused());
    EXPECT_TRUE(fs::is_fifo(lock_));
}

TEST_F(LockNeighbours, HardLinkIsNotWritten) {
    std::ofstream(victim_) << "precious";
    fs::create_hard_link(victim_, lock_);
    EXPECT_EQ(in_child(print_state), refused());
    EXPECT_EQ(file_content(victim_), "precious");
}

TEST_F(LockNeighbours, FileAsScratchDirectoryIsKept) {
    fs::remove(scratch_);
    std::ofstream(scratch_) << "precious";
    EXPECT_EQ(in_child(print_state), refused());
    EXPECT_EQ(file_content(scratch_), "precious");
}

TEST_F(LockNeighbours, DanglingLinkAsScratchDirectoryIsKept) {
    fs::remove(scratch_);
    fs::create_symlink(home_.path() + "/nothing", scratch_);
    EXPECT_EQ(in_child(print_state),
              (Output{"running", "error opening write : No such file or directory\n" + advice()}));
    EXPECT_FALSE(fs::exists(home_.path() + "/nothing"));
}

// A link of the user, for example to a larger disk.
TEST_F(LockNeighbours, UsersLinkAsScratchDirectoryIsFollowed) {
    const std::string elsewhere = home_.path() + "/elsewhere";
    fs::remove(scratch_);
    fs::create_directory(elsewhere);
    fs::create_symlink(elsewhere, scratch_);
    EXPECT_EQ(in_child(print_state), (Output{"owner", ""}));
    EXPECT_TRUE(fs::exists(elsewhere + "/.catalook.lock"));
}

// Another user may have created it below /tmp first.
TEST_F(LockBelowTmp, LinkOfAnotherUserIsNotFollowed) {
    if (!is_root()) GTEST_SKIP() << "needs a link of another user";
    fs::create_directory(victim_);
    fs::create_symlink(victim_, fallback_);
    ASSERT_EQ(lchown(fallback_.c_str(), 12'345, 12'345), 0);
    const Output output = in_child(print_state);
    EXPECT_EQ(output.out, "running");
    EXPECT_TRUE(output.err.ends_with("Please remove" + fallback_ +
                                     "/.catalook.lock file and kill any 'catalook' which is "
                                     "running.\n"))
        << output;
    EXPECT_TRUE(fs::is_empty(victim_));
}

TEST_F(LockBelowTmp, DirectoryOfAnotherUserIsKept) {
    if (!is_root()) GTEST_SKIP() << "needs a directory of another user";
    fs::create_directory(fallback_);
    ASSERT_EQ(chown(fallback_.c_str(), 12'345, 12'345), 0);
    fs::permissions(fallback_, fs::perms{0755});
    EXPECT_EQ(as_ordinary_user(print_state).out, "running");
    struct stat status {};
    ASSERT_EQ(stat(fallback_.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0755U);
    EXPECT_EQ(status.st_uid, 12'345U);
    EXPECT_TRUE(fs::is_empty(fallback_));
}

}  // namespace
}  // namespace kestrel::testing
