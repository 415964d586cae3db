// A settings file that is a symbolic link: followed only if it belongs to the user or to root.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "log/zynlog.h"
#include "log/zynlog_config.h"
#include "tests/log/bytes.h"
#include "tests/log/machine.h"
#include "tests/support/file_content.h"

namespace kestrel::testing {
namespace {

namespace fs = std::filesystem;

constexpr uid_t kAnotherUser = 12'345;
constexpr uid_t kThirdUser = 54'321;

class LinkedConfigFile : public ::testing::Test {
  protected:
    std::string target_ = home() + "/elsewhere";

    static void give_link(const std::string& link, uid_t user) {
        ASSERT_EQ(lchown(link.c_str(), user, user), 0);
    }

    // Reads and writes go to the target, in memory and on disk.
    void expect_settings_in_target() const {
        EXPECT_EQ(ZynLogInitConfigOnly(), 1);
        EXPECT_EQ(ZynLogSetSessionMax(10), 1);
        EXPECT_EQ(file_content(target_).size(), 516U);
        EXPECT_EQ(u32_at(file_content(target_), 508), 10U);
        EXPECT_TRUE(fs::is_symlink(record_path()));
    }

    // The result of ZynLogInitConfigOnly in a process of this user.
    static int init_as(uid_t user) {
        const pid_t child = fork();
        if (child == 0) _exit(setuid(user) == 0 ? ZynLogInitConfigOnly() : 99);
        int status = 0;
        waitpid(child, &status, 0);
        return WEXITSTATUS(status);
    }

    // The directories of the file, accessible to all users.
    static void open_directories() {
        fs::create_directories(client_directory() + "/logs");
        for (const std::string& path : {home(), client_directory()}) {
            fs::permissions(path, fs::perms::all);
        }
    }
};

// The same as root, for another user.
class LinkedConfigFileOfUsers : public LinkedConfigFile {
  protected:
    void SetUp() override {
        if (geteuid() != 0) GTEST_SKIP() << "needs links of other users";
        open_directories();
    }
};

TEST_F(LinkedConfigFile, ReadsAndWritesItsTarget) {
    ZynLogInitConfigOnly();
    ZynLogSetRolloverCount(7);
    ZynLogShutdown();
    fs::rename(record_path(), target_);
    fs::create_symlink(target_, record_path());
    expect_settings_in_target();
    EXPECT_EQ(ZynLogGetRolloverCount(), 7U);
}

TEST_F(LinkedConfigFile, CreatesItsTargetForAllUsers) {
    umask(0077);
    fs::create_symlink(target_, record_path());
    expect_settings_in_target();
    EXPECT_EQ(umask(0), 0022U);
    EXPECT_EQ(fs::status(target_).permissions(), fs::perms{0666});
}

TEST_F(LinkedConfigFile, FollowsARelativeTarget) {
    fs::create_symlink("../elsewhere", record_path());
    expect_settings_in_target();
}

TEST_F(LinkedConfigFile, FollowsLinksInOtherDirectories) {
    const std::string directory = home() + "/directory";
    fs::create_directory(directory);
    fs::create_directory_symlink("directory", home() + "/shortcut");
    fs::create_symlink("../shortcut/second", record_path());
    fs::create_symlink("third", directory + "/second");
    fs::create_symlink("../elsewhere", directory + "/third");
    expect_settings_in_target();
}

TEST_F(LinkedConfigFile, FailsOnALoop) {
    fs::create_symlink("loop", record_path());
    fs::create_symlink(record_path(), client_directory() + "/loop");
    umask(0077);
    EXPECT_EQ(ZynLogInitConfigOnly(), 0);
    EXPECT_EQ(umask(0), 0022U);
}

TEST_F(LinkedConfigFile, FailsInAMissingDirectory) {
    fs::create_symlink(home() + "/missing/elsewhere", record_path());
    EXPECT_EQ(ZynLogInitConfigOnly(), 0);
    EXPECT_FALSE(fs::exists(home() + "/missing"));
}

TEST_F(LinkedConfigFile, FailsOnADirectory) {
    fs::create_directory(target_);
    for (const std::string& target : {target_, target_ + "/", target_ + "/."}) {
        fs::create_symlink(target, record_path());
        EXPECT_EQ(ZynLogInitConfigOnly(), 0);
        ZynLogShutdown();
        fs::remove(record_path());
    }
    EXPECT_TRUE(fs::is_empty(target_));
}

TEST_F(LinkedConfigFile, LeavesNoDescriptorOpen) {
    fs::create_symlink("second", record_path());
    fs::create_symlink(target_, client_directory() + "/second");
    const auto before = open_descriptors();
    expect_settings_in_target();
    EXPECT_EQ(open_descriptors(), before);
}

TEST_F(LinkedConfigFileOfUsers, IsNotFollowedIfAnotherUserOwnsIt) {
    write_file(target_, "dear diary");
    fs::create_symlink(target_, record_path());
    give_link(record_path(), kAnotherUser);
    EXPECT_EQ(ZynLogInitConfigOnly(), 0);
    EXPECT_EQ(file_content(target_), "dear diary");
}

TEST_F(LinkedConfigFileOfUsers, IsNotCreatedThroughAnotherUsersLink) {
    fs::create_symlink(target_, record_path());
    give_link(record_path(), kAnotherUser);
    EXPECT_EQ(ZynLogInitConfigOnly(), 0);
    EXPECT_FALSE(fs::exists(target_));
}

TEST_F(LinkedConfigFileOfUsers, IsNotFollowedThroughASecondLinkOfAnotherUser) {
    const std::string second = home() + "/second";
    write_file(target_, "dear diary");
    fs::create_symlink(second, record_path());
    fs::create_symlink(target_, second);
    give_link(second, kAnotherUser);
    EXPECT_EQ(ZynLogInitConfigOnly(), 0);
    EXPECT_EQ(file_content(target_), "dear diary");
}

TEST_F(LinkedConfigFileOfUsers, IsFollowedByItsOwnerAndByAllIfRootOwnsIt) {
    fs::create_symlink(target_, record_path());
    EXPECT_EQ(init_as(kThirdUser), 1);
    give_link(record_path(), kAnotherUser);
    EXPECT_EQ(init_as(kAnotherUser), 1);
    EXPECT_EQ(init_as(kThirdUser), 0);
}

}  // namespace
}  // namespace kestrel::testing
