#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <filesystem>

#include "log/zynlog.h"
#include "log/zynlog_config.h"
#include "tests/log/fake_daemon.h"
#include "tests/log/machine.h"
#include "tests/log/syslog_recorder.h"

namespace {

using kestrel::testing::clear_syslog_calls;
using kestrel::testing::DaemonConnection;
using kestrel::testing::FakeDaemon;
using kestrel::testing::syslog_calls;
using testing::ElementsAre;
using testing::IsEmpty;

// LOG_CONS | LOG_PID is 3, LOG_USER 8, LOG_ERR 3.
constexpr const char* kOpen = "openlog(veltrane-log-client-test, 3, 8)";
constexpr const char* kMask = "setlogmask(127)";
constexpr const char* kNoDaemon = "syslog(3, Failed to connect with logd.)";

TEST(Init, OpensSyslogAndReportsAMissingDaemon) {
    EXPECT_EQ(ZynLogInit(), 1);
    EXPECT_THAT(syslog_calls(), ElementsAre(kOpen, kMask, kNoDaemon));
}

TEST(Init, ReportsNothingIfTheDaemonListens) {
    const FakeDaemon daemon;
    EXPECT_EQ(ZynLogInit(), 1);
    EXPECT_THAT(syslog_calls(), ElementsAre(kOpen, kMask));
}

TEST(Init, RepeatsOnlyTheReportOfAMissingDaemon) {
    ZynLogInit();
    clear_syslog_calls();
    EXPECT_EQ(ZynLogInit(), 1);
    EXPECT_THAT(syslog_calls(), ElementsAre(kNoDaemon));
}

TEST(Init, DoesNotLookForTheDaemonAgain) {
    ZynLogInit();
    const FakeDaemon daemon;
    ZynLogInit();
    EXPECT_TRUE(daemon.is_quiet());
}

TEST(Init, ConnectsOnce) {
    const FakeDaemon daemon;
    ZynLogInit();
    const DaemonConnection connection = daemon.accept();
    clear_syslog_calls();
    EXPECT_EQ(ZynLogInit(), 1);
    EXPECT_TRUE(daemon.is_quiet());
    EXPECT_THAT(syslog_calls(), IsEmpty());
}

TEST(Init, SucceedsWithoutSettings) {
    std::filesystem::create_directory(kestrel::testing::client_directory() + "/.zynlogconf");
    EXPECT_EQ(ZynLogInit(), 1);
    EXPECT_EQ(ZynLogGetRolloverSize(), kestrel::kLogFailure);
}

TEST(Init, SucceedsWithoutAHomeDirectory) {
    kestrel::testing::write_file(kestrel::testing::home() + "/file", "");
    setenv("HOME", (kestrel::testing::home() + "/file").c_str(), 1);
    EXPECT_EQ(ZynLogInit(), 1);
    EXPECT_THAT(syslog_calls(), ElementsAre(kOpen, kMask, kNoDaemon));
}

TEST(Init, StartsAgainAfterShutdown) {
    ZynLogInit();
    ZynLogShutdown();
    clear_syslog_calls();
    const FakeDaemon daemon;
    EXPECT_EQ(ZynLogInit(), 1);
    DaemonConnection connection = daemon.accept();
    EXPECT_NE(connection.read_message(), "");
    EXPECT_THAT(syslog_calls(), ElementsAre(kOpen, kMask));
}

TEST(Init, AfterConfigOnlyOnlyReportsTheMissingDaemon) {
    const FakeDaemon daemon;
    EXPECT_EQ(ZynLogInitConfigOnly(), 1);
    EXPECT_EQ(ZynLogInit(), 0);
    EXPECT_THAT(syslog_calls(), ElementsAre(kNoDaemon));
    EXPECT_TRUE(daemon.is_quiet());
}

TEST(ConfigOnlyInit, MapsTheSettingsAndNothingElse) {
    const FakeDaemon daemon;
    EXPECT_EQ(ZynLogInitConfigOnly(), 1);
    EXPECT_THAT(syslog_calls(), IsEmpty());
    EXPECT_TRUE(daemon.is_quiet());
    EXPECT_EQ(ZynLogGetRolloverSize(), 200U);
}

TEST(ConfigOnlyInit, WritesNoLines) {
    const FakeDaemon daemon;
    ZynLogInitConfigOnly();
    __ZynTrace(0, kestrel::kAlwaysOn, "", "", 0, "line");
    __ZynLog(kestrel::kError, "", "", 0, "line");
    EXPECT_THAT(syslog_calls(), IsEmpty());
    EXPECT_TRUE(daemon.is_quiet());
}

TEST(ConfigOnlyInit, IsTrueAfterAnInitThatMapped) {
    ZynLogInit();
    EXPECT_EQ(ZynLogInitConfigOnly(), 1);
}

TEST(ConfigOnlyInit, StaysFalseUntilShutdown) {
    const std::string obstacle = kestrel::testing::client_directory() + "/.zynlogconf";
    std::filesystem::create_directory(obstacle);
    EXPECT_EQ(ZynLogInitConfigOnly(), 0);
    std::filesystem::remove(obstacle);
    EXPECT_EQ(ZynLogInitConfigOnly(), 0);
    ZynLogShutdown();
    EXPECT_EQ(ZynLogInitConfigOnly(), 1);
}

TEST(Shutdown, ClosesSyslogAndTheConnection) {
    const FakeDaemon daemon;
    ZynLogInit();
    DaemonConnection connection = daemon.accept();
    connection.read_message();
    clear_syslog_calls();
    ZynLogShutdown();
    EXPECT_TRUE(connection.is_closed());
    EXPECT_THAT(syslog_calls(), ElementsAre("closelog()"));
}

TEST(Shutdown, DoesNothingUnlessInitialised) {
    ZynLogShutdown();
    ZynLogInit();
    ZynLogShutdown();
    clear_syslog_calls();
    ZynLogShutdown();
    EXPECT_THAT(syslog_calls(), IsEmpty());
}

TEST(Shutdown, KeepsASyslogThatItDidNotOpen) {
    ZynLogInitConfigOnly();
    ZynLogShutdown();
    EXPECT_THAT(syslog_calls(), IsEmpty());
}

TEST(Shutdown, LeavesNoDescriptorOpen) {
    const FakeDaemon daemon;
    const auto before = kestrel::testing::open_descriptors();
    ZynLogInit();
    EXPECT_NE(kestrel::testing::open_descriptors(), before);
    ZynLogShutdown();
    EXPECT_EQ(kestrel::testing::open_descriptors(), before);
}

TEST(Ident, IsTruncatedTo31Characters) {
    std::string name(40, 'n');
    program_invocation_short_name = name.data();
    const FakeDaemon daemon;
    ZynLogInit();
    const std::string ident = "veltrane-" + std::string(22, 'n');
    EXPECT_EQ(ident.size(), 31U);
    EXPECT_EQ(syslog_calls().at(0), "openlog(" + ident + ", 3, 8)");
    EXPECT_EQ(daemon.accept().read_message().substr(6), ident + '\0');
}

TEST(Ident, IsUpdatedByEachInit) {
    ZynLogInit();
    ZynLogShutdown();
    clear_syslog_calls();
    std::string name = "x";
    program_invocation_short_name = name.data();
    ZynLogInit();
    EXPECT_EQ(syslog_calls().at(0), "openlog(veltrane-x, 3, 8)");
}

}  // namespace
