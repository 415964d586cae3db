// A home on a read-only or full disk: real file systems in a private mount namespace.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/mount.h>

#include <filesystem>
#include <string>

#include "log/zynlog.h"
#include "log/zynlog_config.h"
#include "log/zynlog_paths.h"
#include "tests/log/bytes.h"
#include "tests/log/fake_daemon.h"
#include "tests/log/machine.h"
#include "tests/log/syslog_recorder.h"
#include "tests/support/file_content.h"

namespace kestrel::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::Contains;
using ::testing::HasSubstr;
using ::testing::Not;

class HomeOnADisk : public ::testing::Test {
  protected:
    std::string client_ = home() + "/.QUOClient";
    std::string record_ = client_ + "/.zynlogconf";

    void SetUp() override {
        if (!has_private_machine()) GTEST_SKIP() << "needs a mount namespace of its own";
    }
    // Otherwise the directory could not be removed.
    void TearDown() override { umount2(home().c_str(), MNT_DETACH); }

    static void mount_home(const char* options) {
        ASSERT_EQ(mount("none", home().c_str(), "tmpfs", 0, options), 0);
    }

    static void make_read_only(bool is_read_only) {
        const unsigned long flags = is_read_only ? MS_REMOUNT | MS_RDONLY : MS_REMOUNT;
        ASSERT_EQ(mount("none", home().c_str(), "tmpfs", flags, nullptr), 0);
    }

    // As without settings: nothing can be set, and only always-on lines pass.
    static void expect_no_settings() {
        EXPECT_EQ(ZynLogSetCurrentLevel(kLogWebkit, kVerbose), 0);
        EXPECT_EQ(ZynLogGetOutputPath(), nullptr);
        __ZynTrace(kLogWebkit, kFatal, "", "", 0, "%s", "fatal");
        __ZynTrace(kLogWebkit, kAlwaysOn, "", "", 0, "%s", "always");
    }
};

using ReadOnlyHome = HomeOnADisk;
using FullHome = HomeOnADisk;

TEST_F(ReadOnlyHome, WithoutDirectoriesLogsToSyslogWithoutFiles) {
    mount_home("");
    make_read_only(true);
    EXPECT_EQ(ZynLogInit(), 1);
    EXPECT_STREQ(GetConfigFilePath(), "");
    EXPECT_STREQ(GetLogFilePath(), "");
    EXPECT_STREQ(GetSocketFilePath(), "");
    expect_no_settings();
    EXPECT_THAT(syslog_calls(), Contains(HasSubstr("always")));
    EXPECT_THAT(syslog_calls(), Not(Contains(HasSubstr("fatal"))));
    EXPECT_TRUE(fs::is_empty(home()));
}

TEST_F(ReadOnlyHome, KeepsExistingSettings) {
    mount_home("");
    fs::create_directories(client_ + "/logs");
    write_file(record_, "as it was");
    make_read_only(true);
    EXPECT_EQ(ZynLogInitConfigOnly(), 0);
    expect_no_settings();
    EXPECT_EQ(file_content(record_), "as it was");
}

TEST_F(ReadOnlyHome, ConnectsToTheDaemon) {
    mount_home("");
    fs::create_directories(client_ + "/logs");
    const FakeDaemon daemon;
    make_read_only(true);
    EXPECT_EQ(ZynLogInit(), 1);
    DaemonConnection connection = daemon.accept();
    connection.read_message();  // its name
    expect_no_settings();
    EXPECT_THAT(connection.read_message(), HasSubstr("always"));
    EXPECT_TRUE(connection.is_quiet());
}

TEST_F(ReadOnlyHome, CreatesSettingsAtTheNextStartOnceWritable) {
    mount_home("");
    fs::create_directories(client_ + "/logs");
    make_read_only(true);
    EXPECT_EQ(ZynLogInitConfigOnly(), 0);
    ZynLogShutdown();
    make_read_only(false);
    EXPECT_EQ(ZynLogInitConfigOnly(), 1);
    EXPECT_EQ(ZynLogSetSessionMax(10), 1);
    EXPECT_EQ(u32_at(file_content(record_), 508), 10U);
}

TEST_F(FullHome, WithoutSpaceForDirectoriesHasNoFiles) {
    mount_home("nr_inodes=1");
    EXPECT_EQ(ZynLogInitConfigOnly(), 0);
    EXPECT_STREQ(GetConfigFilePath(), "");
    expect_no_settings();
    EXPECT_TRUE(fs::is_empty(home()));
}

TEST_F(FullHome, WithoutSpaceForTheSettingsHasNone) {
    mount_home("nr_inodes=3");
    fs::create_directories(client_ + "/logs");
    EXPECT_EQ(ZynLogInitConfigOnly(), 0);
    expect_no_settings();
    EXPECT_FALSE(fs::exists(record_));
}

// The disk has no space for the settings file.
TEST_F(FullHome, UsesDefaultsThatCannotBeChanged) {
    mount_home("size=64k");
    fs::create_directories(client_ + "/logs");
    write_file(home() + "/ballast", std::string(1'000'000, 'x'));
    EXPECT_EQ(ZynLogInitConfigOnly(), 1);
    EXPECT_EQ(ZynLogGetWorkingLevel(kLogWebkit), 4U);
    EXPECT_EQ(ZynLogSetSessionMax(10), 0);
    EXPECT_EQ(ZynLogGetSessionMax(), 200U);
    EXPECT_EQ(file_content(record_), std::string(516, '\0'));
}

TEST_F(FullHome, KeepsChangesAfterTheNextStartOnceThereIsSpace) {
    mount_home("size=64k");
    fs::create_directories(client_ + "/logs");
    write_file(home() + "/ballast", std::string(1'000'000, 'x'));
    ZynLogInitConfigOnly();
    EXPECT_EQ(ZynLogSetSessionMax(10), 0);
    ZynLogShutdown();
    fs::remove(home() + "/ballast");
    EXPECT_EQ(ZynLogInitConfigOnly(), 1);
    EXPECT_EQ(ZynLogGetSessionMax(), 200U);
    EXPECT_EQ(ZynLogSetSessionMax(11), 1);
    EXPECT_EQ(u32_at(file_content(record_), 508), 11U);
}

// An existing file keeps its blocks.
TEST_F(FullHome, SharesExistingSettings) {
    mount_home("size=64k");
    ZynLogInitConfigOnly();
    write_file(home() + "/ballast", std::string(1'000'000, 'x'));
    EXPECT_EQ(ZynLogSetSessionMax(12), 1);
    EXPECT_EQ(u32_at(file_content(record_), 508), 12U);
}

}  // namespace
}  // namespace kestrel::testing
