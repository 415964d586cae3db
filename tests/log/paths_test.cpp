#include <gtest/gtest.h>
#include <pwd.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <barrier>
#include <cstdlib>
#include <filesystem>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "log/zynlog.h"
#include "log/zynlog_config.h"
#include "log/zynlog_paths.h"
#include "tests/log/bytes.h"
#include "tests/log/fake_daemon.h"
#include "tests/log/machine.h"
#include "tests/support/file_content.h"

namespace {

namespace fs = std::filesystem;
using kestrel::testing::FakeDaemon;
using kestrel::testing::home;

void expect_per_user_paths(const std::string& directory) {
    EXPECT_EQ(GetConfigFilePath(), directory + "//.QUOClient/.zynlogconf");
    EXPECT_EQ(GetLogFilePath(), directory + "//.QUOClient/logs/QUOClient.log");
    EXPECT_EQ(GetSocketFilePath(), directory + "//.QUOClient/.zynlogsocket");
}

void expect_system_wide_paths() {
    EXPECT_STREQ(GetConfigFilePath(), "/var/log/veltrane/.zynlogconf");
    EXPECT_STREQ(GetLogFilePath(), "/var/log/veltrane/QUOClient.log");
    EXPECT_STREQ(GetSocketFilePath(), "/var/log/veltrane/.zynlogsocket");
}

void expect_no_paths() {
    EXPECT_STREQ(GetConfigFilePath(), "");
    EXPECT_STREQ(GetLogFilePath(), "");
    EXPECT_STREQ(GetSocketFilePath(), "");
}

TEST(PerUserPaths, FollowHomeWithADoubleSlash) { expect_per_user_paths(home()); }

class AnyPath : public testing::TestWithParam<const char* (*)()> {};

TEST_P(AnyPath, CreatesTheLogDirectory) {
    GetParam()();
    EXPECT_TRUE(fs::is_directory(home() + "/.QUOClient/logs"));
}

TEST_P(AnyPath, IsCached) {
    const char* const path = GetParam()();
    const std::string text = path;
    setenv("HOME", "/nowhere", 1);
    EXPECT_EQ(GetParam()(), path);
    EXPECT_EQ(path, text);
}

TEST_P(AnyPath, IsTheSameForAllThreads) {
    constexpr std::size_t kThreads = 8;
    std::barrier start(static_cast<std::ptrdiff_t>(kThreads));
    std::vector<const char*> paths(kThreads);
    std::vector<std::thread> threads;
    for (const char*& path : paths) {
        threads.emplace_back([&] {
            start.arrive_and_wait();
            path = GetParam()();
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(std::set(paths.begin(), paths.end()).size(), 1U);
}

INSTANTIATE_TEST_SUITE_P(Paths, AnyPath,
                         testing::Values(&GetConfigFilePath, &GetLogFilePath, &GetSocketFilePath));

TEST(PerUserPaths, UseTheHomeOfTheFirstCall) {
    GetLogFilePath();
    const std::string first = home();
    setenv("HOME", (home() + "/other").c_str(), 1);
    expect_per_user_paths(first);
    EXPECT_FALSE(fs::exists(home() + "/other"));
}

TEST(PerUserPaths, CreateTheLogDirectoryWithAllItsParents) {
    const std::string deep = home() + "/a/b/c";
    setenv("HOME", deep.c_str(), 1);
    expect_per_user_paths(deep);
    EXPECT_TRUE(fs::is_directory(deep + "/.QUOClient/logs"));
}

TEST(PerUserPaths, CreateTheLogDirectoryWithTheUmask) {
    umask(0027);
    GetConfigFilePath();
    struct stat status {};
    ASSERT_EQ(stat((home() + "/.QUOClient/logs").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0750U);
}

TEST(PerUserPaths, UseAnExistingLogDirectory) {
    fs::create_directories(home() + "/.QUOClient/logs");
    expect_per_user_paths(home());
}

TEST(PerUserPaths, AreEmptyIfTheLogDirectoryCannotBeCreated) {
    kestrel::testing::write_file(home() + "/.QUOClient", "not a directory");
    expect_no_paths();
    fs::remove(home() + "/.QUOClient");
    expect_no_paths();
}

TEST(PerUserPaths, AreEmptyIfAParentIsADanglingLink) {
    fs::create_symlink("/nowhere/at/all", home() + "/.QUOClient");
    expect_no_paths();
}

TEST(PerUserPaths, UseThePasswordEntryWithoutHOME) {
    const std::string entry_home = getpwuid(getuid())->pw_dir;
    if (!kestrel::testing::has_private_machine() || !kestrel::testing::cover(entry_home)) {
        GTEST_SKIP() << "the real home directory would be written to";
    }
    unsetenv("HOME");
    expect_per_user_paths(entry_home);
    EXPECT_TRUE(fs::is_directory(entry_home + "/.QUOClient/logs"));
}

bool make_empty(const char* file) {
    return mount("/dev/null", file, nullptr, MS_BIND, nullptr) == 0;
}

// Without HOME, and without a password entry: in files, the only source if none is configured.
class MissingHome : public testing::Test {
  protected:
    void SetUp() override {
        const bool has_no_entry = kestrel::testing::has_private_machine() &&
                                  make_empty("/etc/passwd") && make_empty("/etc/nsswitch.conf") &&
                                  getpwuid(getuid()) == nullptr;
        if (!has_no_entry) GTEST_SKIP() << "needs a user without a password entry";
        unsetenv("HOME");
    }
};

TEST_F(MissingHome, MakesPathsEmpty) { expect_no_paths(); }

TEST_F(MissingHome, IsNotCached) {
    expect_no_paths();
    setenv("HOME", home().c_str(), 1);
    expect_per_user_paths(home());
    unsetenv("HOME");
    expect_per_user_paths(home());
}

TEST_F(MissingHome, AllowsSettingsAtALaterStart) {
    EXPECT_EQ(ZynLogInitConfigOnly(), 0);
    ZynLogShutdown();
    setenv("HOME", home().c_str(), 1);
    EXPECT_EQ(ZynLogInitConfigOnly(), 1);
    EXPECT_STREQ(ZynLogGetOutputPath(), (home() + "//.QUOClient/logs/QUOClient.log").c_str());
}

// The system-wide files are tried out on a /var/log that only this process sees.
class SystemLogDirectory : public testing::Test {
  protected:
    void SetUp() override {
        if (!kestrel::testing::has_private_machine()) {
            GTEST_SKIP() << "needs a mount namespace of its own";
        }
        fs::create_directory("/var/log/veltrane");
    }

    static void give_to_another_user() {
        if (chown("/var/log/veltrane", getuid() + 1, getgid()) == -1) {
            GTEST_SKIP() << "only root may give a directory away";
        }
    }

    static constexpr const char* kSocket = "/var/log/veltrane/.zynlogsocket";
};

TEST_F(SystemLogDirectory, IsUsedByItsOwner) {
    expect_system_wide_paths();
    EXPECT_FALSE(fs::exists(home() + "/.QUOClient"));
}

TEST_F(SystemLogDirectory, IsNotUsedByOthers) {
    give_to_another_user();
    if (!IsSkipped()) expect_per_user_paths(home());
}

TEST_F(SystemLogDirectory, IsUsedByOthersIfADaemonListensThere) {
    give_to_another_user();
    if (IsSkipped()) return;
    const FakeDaemon daemon(kSocket);
    expect_system_wide_paths();
    EXPECT_TRUE(daemon.accept().is_closed());
}

TEST_F(SystemLogDirectory, IsNotUsedByOthersIfItsSocketIsStale) {
    give_to_another_user();
    if (IsSkipped()) return;
    { const FakeDaemon gone(kSocket); }
    kestrel::testing::write_file(kSocket, "");
    expect_per_user_paths(home());
}

TEST_F(SystemLogDirectory, IsNotUsedIfItIsAFile) {
    fs::remove("/var/log/veltrane");
    kestrel::testing::write_file("/var/log/veltrane", "");
    expect_per_user_paths(home());
}

TEST_F(SystemLogDirectory, IsDecidedOnceForAllPaths) {
    GetSocketFilePath();
    fs::remove("/var/log/veltrane");
    expect_system_wide_paths();
}

TEST_F(SystemLogDirectory, IsIgnoredIfItAppearsLater) {
    fs::remove("/var/log/veltrane");
    GetSocketFilePath();
    fs::create_directory("/var/log/veltrane");
    expect_per_user_paths(home());
}

TEST_F(SystemLogDirectory, LeavesNoProbeOpen) {
    give_to_another_user();
    if (IsSkipped()) return;
    const auto before = kestrel::testing::open_descriptors();
    GetSocketFilePath();
    EXPECT_EQ(kestrel::testing::open_descriptors(), before);
}

TEST_F(SystemLogDirectory, ContainsSettingsAndSocket) {
    const FakeDaemon daemon(kSocket);
    ZynLogInit();
    EXPECT_NE(daemon.accept().read_message(), "");
    const std::string record = kestrel::testing::file_content("/var/log/veltrane/.zynlogconf");
    EXPECT_EQ(record.size(), 516U);
    EXPECT_STREQ(record.c_str() + 244, "/var/log/veltrane/QUOClient.log");
}

}  // namespace
