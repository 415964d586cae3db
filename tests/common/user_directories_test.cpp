#include <gtest/gtest.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iostream>

#include "common/LinuxCommonUtils.h"
#include "tests/common/child_process.h"
#include "tests/common/scoped_variable.h"
#include "tests/support/temporary_directory.h"

namespace fs = std::filesystem;
using kestrel::testing::as_ordinary_user;
using kestrel::testing::in_child;
using kestrel::testing::is_root;
using kestrel::testing::Output;
using kestrel::testing::ScopedVariable;
using kestrel::testing::TemporaryDirectory;

namespace {

// The buffer size that the password database requires; 0 for the real behaviour.
std::size_t entry_size = 0;

}  // namespace

extern "C" int __real_getpwuid_r(uid_t, passwd*, char*, size_t, passwd**);
extern "C" int __wrap_getpwuid_r(uid_t user, passwd* entry, char* buffer, size_t size,
                                 passwd** found) {
    if (size < entry_size) {
        *found = nullptr;
        return ERANGE;
    }
    return __real_getpwuid_r(user, entry, buffer, size, found);
}

namespace {

class UserDirectories : public ::testing::Test {
  protected:
    // A unique name, so that its directory below /tmp belongs to the test.
    std::string user_ = "kestrel-test-user-" + std::to_string(getpid());
    std::string fallback_ = "/tmp/" + user_;
    TemporaryDirectory home_;
    ScopedVariable home_variable_{"HOME", home_.path()};
    ScopedVariable user_variable_{"USER", user_};

    void TearDown() override { fs::remove(fallback_); }
};

void print_scratch_directory() { std::cout << LinuxCommonUtils::getUserTmpDir(); }

mode_t mode_of(const std::string& path) {
    struct stat status {};
    EXPECT_EQ(stat(path.c_str(), &status), 0) << path;
    return status.st_mode & 07777U;
}

TEST_F(UserDirectories, UserNameIsTakenFromTheEnvironment) {
    EXPECT_EQ(LinuxCommonUtils::getUserName(), user_);
    const ScopedVariable empty("USER", "");
    EXPECT_EQ(LinuxCommonUtils::getUserName(), "");
}

TEST_F(UserDirectories, UserNameFallsBackToThePasswordEntry) {
    const ScopedVariable unset("USER", std::nullopt);
    const passwd* const entry = getpwuid(getuid());
    ASSERT_NE(entry, nullptr);
    EXPECT_EQ(LinuxCommonUtils::getUserName(), entry->pw_name);
}

TEST_F(UserDirectories, LargePasswordEntriesAreRead) {
    const ScopedVariable user("USER", std::nullopt);
    const ScopedVariable home("HOME", std::nullopt);
    const passwd* const entry = getpwuid(getuid());
    ASSERT_NE(entry, nullptr);
    entry_size = 300'000;
    EXPECT_EQ(LinuxCommonUtils::getUserName(), entry->pw_name);
    EXPECT_EQ(LinuxCommonUtils::getHomeDir(), entry->pw_dir);
    entry_size = static_cast<std::size_t>(-1);
    EXPECT_EQ(LinuxCommonUtils::getUserName(), "") << "a database that is never satisfied";
    entry_size = 0;
}

TEST_F(UserDirectories, UserWithoutPasswordEntryHasNeitherNameNorHome) {
    if (!is_root()) GTEST_SKIP() << "needs a user without password entry";
    const ScopedVariable user("USER", std::nullopt);
    const ScopedVariable home("HOME", std::nullopt);
    const Output output = as_ordinary_user([] {
        std::cout << '[' << LinuxCommonUtils::getUserName() << LinuxCommonUtils::getHomeDir()
                  << ']';
    });
    EXPECT_EQ(output, (Output{"[]", ""}));
}

TEST_F(UserDirectories, ScratchDirectoryIsPrivate) {
    const std::string scratch = home_.path() + "/.QUOClient/.tmp";
    const Output first = in_child([] {
        umask(0);
        print_scratch_directory();
    });
    EXPECT_EQ(first, (Output{scratch, ""}));
    EXPECT_EQ(mode_of(home_.path() + "/.QUOClient"), 0700U);
    EXPECT_EQ(mode_of(scratch), 0700U);
    EXPECT_EQ(in_child(print_scratch_directory), first) << "once more, with both there";
}

TEST_F(UserDirectories, UnwritableHomeFallsBackToTheUsersDirectoryBelowTmp) {
    fs::permissions(home_.path(), fs::perms{0555});
    EXPECT_EQ(as_ordinary_user(print_scratch_directory),
              (Output{fallback_,
                      "Failed to create quoHome directory inside user home directory."
                      "Permission denied.Using /tmp directory.\n"}));
    EXPECT_EQ(mode_of(fallback_), 0700U);
}

TEST_F(UserDirectories, MissingHomeFallsBackToo) {
    const ScopedVariable home("HOME", home_.path() + "/missing");
    EXPECT_EQ(in_child(print_scratch_directory),
              (Output{fallback_,
                      "Failed to create quoHome directory inside user home directory."
                      "No such file or directory.Using /tmp directory.\n"}));
}

TEST_F(UserDirectories, FileAsClientDirectoryFallsBackToo) {
    std::ofstream(home_.path() + "/.QUOClient") << "";
    EXPECT_EQ(in_child(print_scratch_directory),
              (Output{fallback_,
                      "Failed to create quoHome/.tmp directory inside user home directory."
                      "Not a directory.Using /tmp directory.\n"}));
}

TEST_F(UserDirectories, ExistingFallbackIsUsedUnchanged) {
    const ScopedVariable home("HOME", home_.path() + "/missing");
    fs::create_directory(fallback_);
    EXPECT_EQ(in_child(print_scratch_directory).out, fallback_);
}

TEST_F(UserDirectories, FallbackWithoutUserNameIsTmpItself) {
    const ScopedVariable home("HOME", home_.path() + "/missing");
    const ScopedVariable user("USER", "");
    EXPECT_EQ(in_child(print_scratch_directory).out, "/tmp");
}

TEST_F(UserDirectories, EmptyHomeSelectsTmpSilently) {
    const ScopedVariable home("HOME", "");
    EXPECT_EQ(in_child(print_scratch_directory), (Output{"/tmp", ""}));
    EXPECT_FALSE(fs::exists(fallback_));
}

TEST_F(UserDirectories, MissingHomeSelectsTmpSilently) {
    if (!is_root()) GTEST_SKIP() << "needs a user without password entry";
    const ScopedVariable home("HOME", std::nullopt);
    EXPECT_EQ(as_ordinary_user(print_scratch_directory), (Output{"/tmp", ""}));
    EXPECT_FALSE(fs::exists(fallback_));
}

}  // namespace
