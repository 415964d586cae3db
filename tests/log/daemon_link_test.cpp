// The life of the connection to the log daemon.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <string>

#include "log/zynlog.h"
#include "log/zynlog_config.h"
#include "log/zynlog_paths.h"
#include "tests/log/daemon_link_fixture.h"
#include "tests/log/fake_daemon.h"
#include "tests/log/machine.h"
#include "tests/log/syslog_recorder.h"

namespace {

using kestrel::kError;
using kestrel::kFatal;
using kestrel::kLogWebkit;
using kestrel::testing::DaemonLink;
using kestrel::testing::FakeDaemon;
using kestrel::testing::open_descriptors;
using kestrel::testing::syslog_calls;
using testing::ElementsAre;
using testing::IsEmpty;

TEST_F(DaemonLink, ReplacesSyslog) {
    __ZynTrace(kLogWebkit, kError, "", "", 0, "x");
    EXPECT_THAT(syslog_calls(), IsEmpty());
}

TEST_F(DaemonLink, IsCloseOnExec) { EXPECT_TRUE((fcntl(link_fd_, F_GETFD) & FD_CLOEXEC) != 0); }

TEST_F(DaemonLink, LosesOneLineAndSwitchesToSyslogIfTheDaemonCloses) {
    connection_.hang_up();
    __ZynTrace(kLogWebkit, kError, "", "", 0, "lost");
    EXPECT_THAT(syslog_calls(), IsEmpty());
    __ZynTrace(kLogWebkit, kError, "", "", 0, "second");
    __ZynTrace(kLogWebkit, kFatal, "", "", 0, "third");
    EXPECT_THAT(syslog_calls(), ElementsAre("vsyslog(3, second)", "vsyslog(1, third)"));
}

TEST_F(DaemonLink, DoesNotReconnect) {
    connection_.hang_up();
    __ZynTrace(kLogWebkit, kError, "", "", 0, "lost");
    __ZynTrace(kLogWebkit, kError, "", "", 0, "second");
    EXPECT_TRUE(daemon_.is_quiet());
    ZynLogInit();
    EXPECT_TRUE(daemon_.is_quiet());
    EXPECT_EQ(syslog_calls().back(), "syslog(3, Failed to connect with logd.)");
    ZynLogShutdown();
    ZynLogInit();
    EXPECT_FALSE(daemon_.is_quiet());
}

TEST_F(DaemonLink, ClosesItsDescriptorIfTheDaemonCloses) {
    connection_.hang_up();
    __ZynTrace(kLogWebkit, kError, "", "", 0, "lost");
    EXPECT_EQ(open_descriptors().count(link_fd_), 0U);
}

TEST_F(DaemonLink, ClosesAfterAnIncompleteWrite) {
    // A daemon that does not read, and a non-blocking socket.
    fcntl(link_fd_, F_SETFL, O_NONBLOCK);
    const std::string text(8'000, 't');
    int lines = 0;
    while (syslog_calls().empty() && lines < 10'000) {
        __ZynTrace(kLogWebkit, kError, "", "", 0, "%s", text.c_str());
        ++lines;
    }
    EXPECT_GT(lines, 10);
    EXPECT_THAT(syslog_calls(), ElementsAre("vsyslog(3, " + text + ")"));
    for (int whole = 0; whole < lines - 2; ++whole) {
        ASSERT_EQ(connection_.read_message().size(), 26U + 8'001);
    }
    connection_.read_message();
    EXPECT_TRUE(connection_.is_closed());
}

volatile std::sig_atomic_t sigpipes = 0;

TEST_F(DaemonLink, RaisesSigpipeIfTheDaemonCloses) {
    signal(SIGPIPE, [](int) { sigpipes = sigpipes + 1; });
    connection_.hang_up();
    __ZynTrace(kLogWebkit, kError, "", "", 0, "lost");
    EXPECT_EQ(sigpipes, 1);
    __ZynTrace(kLogWebkit, kError, "", "", 0, "to syslog");
    EXPECT_EQ(sigpipes, 1);
}

TEST(DaemonSocket, MayHaveAPathThatFillsItsAddress) {
    const std::string suffix = "//.QUOClient/.zynlogsocket";
    std::string path = kestrel::testing::home() + "/";
    path.append(107 - suffix.size() - path.size(), 'd');
    setenv("HOME", path.c_str(), 1);
    GetSocketFilePath();
    const FakeDaemon daemon(path + suffix);
    ZynLogInit();
    EXPECT_FALSE(daemon.is_quiet());
}

// An empty path means no daemon: it would be an abstract address of NULs.
TEST(DaemonSocket, IsNeverAnAbstractAddress) {
    const FakeDaemon impostor{std::string()};
    kestrel::testing::write_file(kestrel::testing::home() + "/file", "");
    setenv("HOME", (kestrel::testing::home() + "/file").c_str(), 1);
    ZynLogInit();
    EXPECT_TRUE(impostor.is_quiet());
}

TEST(DaemonSocket, MayBeStale) {
    kestrel::testing::client_directory();
    const std::string path = GetSocketFilePath();
    kestrel::testing::write_file(path, "");
    EXPECT_EQ(ZynLogInit(), 1);
    EXPECT_EQ(syslog_calls().back(), "syslog(3, Failed to connect with logd.)");
}

}  // namespace
