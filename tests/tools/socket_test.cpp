// `kestrel-log follow` at the log daemon's socket: start, conflicts, end.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>

#include "log/zynlog.h"
#include "log/zynlog_config.h"
#include "tests/log/fake_daemon.h"
#include "tests/log/machine.h"
#include "tests/support/file_content.h"
#include "tests/tools/program.h"
#include "tests/tools/viewer.h"

namespace {

using kestrel::kError;
using kestrel::kLogWebkit;
using kestrel::testing::kestrel_log;
using kestrel::testing::log_as;
using kestrel::testing::log_record;
using kestrel::testing::Outcome;
using kestrel::testing::RawProcess;
using kestrel::testing::socket_path;
using kestrel::testing::Viewer;
using testing::HasSubstr;

TEST(Follow, PrintsTheSocketPath) {
    EXPECT_EQ(Viewer().greeting, "kestrel-log: listening at " + kestrel::testing::home() +
                                     "//.QUOClient/.zynlogsocket\n");
}

TEST(Follow, AcceptsAnyNumberOfProcesses) {
    Viewer viewer;
    std::array<std::optional<RawProcess>, 200> processes;
    for (auto& process : processes) process.emplace();
    for (std::size_t index = 0; index < processes.size(); ++index) {
        processes[index]->send_bytes(log_record(std::to_string(index)));
        EXPECT_THAT(viewer.read_line(), HasSubstr("  " + std::to_string(index) + "\n"));
    }
}

TEST(Follow, DropsOnlyTheProcessThatSendsInvalidMessages) {
    Viewer viewer;
    for (const std::string& message :
         {std::string("\x00\x00\x09\x00", 4), std::string("\x00\x00\x01\x00", 4),
          std::string("\x01\x00\x02\x00x", 5)}) {
        const RawProcess process;
        process.send_bytes(message);
        EXPECT_TRUE(process.is_dropped());
    }
    const RawProcess process;
    process.send_bytes(log_record("good"));
    EXPECT_THAT(viewer.read_line(), HasSubstr("good\n"));
}

class FollowUntilSignal : public testing::TestWithParam<int> {};

TEST_P(FollowUntilSignal, ExitsCleanlyAndRemovesItsSocket) {
    Viewer viewer;
    EXPECT_TRUE(std::filesystem::exists(socket_path()));
    viewer.send_signal(GetParam());
    EXPECT_EQ(viewer.wait(), 0);
    EXPECT_FALSE(std::filesystem::exists(socket_path()));
}

INSTANTIATE_TEST_SUITE_P(Signals, FollowUntilSignal, testing::Values(SIGINT, SIGTERM));

TEST(Follow, ExitsWhenOutputIsClosed) {
    Viewer viewer;
    viewer.close_output();
    EXPECT_EQ(viewer.wait(), 0);
    EXPECT_FALSE(std::filesystem::exists(socket_path()));
}

TEST(Follow, RestrictsTheSocketToItsUser) {
    const Viewer viewer;
    EXPECT_EQ(std::filesystem::status(socket_path()).permissions(),
              std::filesystem::perms::owner_all);
}

TEST(Follow, FailsIfADaemonListens) {
    const kestrel::testing::FakeDaemon daemon;
    const Outcome outcome = kestrel_log({"follow"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.error, HasSubstr("already listens at " + kestrel::testing::home()));
    EXPECT_TRUE(std::filesystem::exists(socket_path()));
}

TEST(Follow, FailsIfAnotherViewerListens) {
    Viewer viewer;
    EXPECT_EQ(kestrel_log({"follow"}).status, 1);
    log_as("p", kLogWebkit, kError, "still here");
    EXPECT_THAT(viewer.read_line(), HasSubstr("still here\n"));
}

TEST(Follow, ReplacesAStaleSocket) {
    Viewer killed;
    killed.send_signal(SIGKILL);
    killed.wait();
    ASSERT_TRUE(std::filesystem::is_socket(socket_path()));
    Viewer viewer;
    log_as("p", kLogWebkit, kError, "here");
    EXPECT_THAT(viewer.read_line(), HasSubstr("here\n"));
}

TEST(Follow, KeepsAFileThatIsNotASocket) {
    kestrel::testing::write_file(socket_path(), "precious");
    const Outcome outcome = kestrel_log({"follow"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.error, HasSubstr("is not a socket"));
    EXPECT_EQ(kestrel::testing::file_content(socket_path()), "precious");
}

TEST(Follow, ReportsAMissingHomeDirectory) {
    kestrel::testing::write_file(kestrel::testing::home() + "/file", "");
    setenv("HOME", (kestrel::testing::home() + "/file").c_str(), 1);
    const Outcome outcome = kestrel_log({"follow"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.error, "kestrel-log: cannot listen: there is no home directory\n");
}

TEST(Follow, KeepsASocketThatReplacedIts) {
    Viewer viewer;
    std::filesystem::remove(socket_path());
    const kestrel::testing::FakeDaemon daemon;
    viewer.send_signal(SIGTERM);
    EXPECT_EQ(viewer.wait(), 0);
    EXPECT_TRUE(std::filesystem::exists(socket_path()));
}

}  // namespace
