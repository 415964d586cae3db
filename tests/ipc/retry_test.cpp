// Connecting to a host that is late, or never comes. No test waits: the program has its own sleep.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstring>
#include <future>
#include <optional>

#include "ipc/send.h"
#include "log/zynlog.h"
#include "tests/ipc/child_report.h"
#include "tests/ipc/fake_sleep.h"
#include "tests/ipc/link_fixture.h"
#include "tests/ipc/log_lines.h"
#include "tests/support/frame_bytes.h"
#include "tests/support/listening_host.h"

namespace kestrel::testing {
namespace {

using ::testing::ElementsAreArray;
using ::testing::EndsWith;
using ::testing::ExitedWithCode;

std::string retry_text(int left) {
    return "Failed to connect to server, trying again after 1 secs, retries left : " +
           std::to_string(left);
}

// The log of a link that has retried this often.
std::vector<LogLine> log_of_retries(int retries) {
    std::vector<LogLine> lines{{kLogWebkit, kInfo, "+"}};
    for (int left = 9; left >= 10 - retries; --left) {
        lines.push_back({kLogWebkit, kInfo, retry_text(left)});
    }
    return lines;
}

class RetryTest : public LinkTest {
  protected:
    // The link is started while nobody listens, and gives up.
    void fail_to_connect() {
        start_link();
        ASSERT_TRUE(wait_for_log(kGaveUp.text));
        ASSERT_TRUE(reader_has_ended());
    }

    void expect_ten_retries() const {
        std::vector<LogLine> lines = log_of_retries(10);
        lines.push_back(kGaveUp);
        EXPECT_THAT(logged(), ElementsAreArray(lines));
        EXPECT_EQ(errors.text(), "Connection error!\n");
    }
};

TEST_F(RetryTest, GivesUpAfterElevenAttemptsASecondApart) {
    const FakeSleep sleeps;
    fail_to_connect();
    EXPECT_THAT(sleeps.calls(), ElementsAreArray(std::vector<unsigned>(10, 1)));
    expect_ten_retries();
}

TEST_F(RetryTest, RetriesAStaleSocket) {
    { const ListeningHost gone(path); }
    const FakeSleep sleeps;
    fail_to_connect();
    EXPECT_EQ(sleeps.calls().size(), 10U);
    expect_ten_retries();
}

TEST_F(RetryTest, KeepsOneUnconnectedDescriptorAfterGivingUp) {
    std::vector<int> seen;
    const FakeSleep sleeps([&](int) { seen.push_back(webkit_client::server_fd); });
    fail_to_connect();
    EXPECT_NE(webkit_client::server_fd, -1);
    EXPECT_THAT(seen, ElementsAreArray(std::vector<int>(10, webkit_client::server_fd)));
    EXPECT_NE(fcntl(webkit_client::server_fd, F_GETFD), -1);
    EXPECT_EQ(open_descriptors(), descriptors_before + 1);
    EXPECT_TRUE(webkit_client::mu.try_lock());
    webkit_client::mu.unlock();
}

// A host that starts to listen during one of the seconds between attempts.
class LateHostTest : public RetryTest, public ::testing::WithParamInterface<int> {};

TEST_P(LateHostTest, IsReachedByTheNextAttempt) {
    std::promise<void> listening;
    std::optional<ListeningHost> host;
    const FakeSleep sleeps([&](int call) {
        if (call != GetParam()) return;
        host.emplace(path);
        listening.set_value();
    });
    start_link();
    listening.get_future().get();
    const HostEnd connection = host->accept();
    EXPECT_EQ(connection.read_frame(), frame_bytes(61, {std::to_string(getpid())}, {}));
    ASSERT_TRUE(wait_for_log(retry_text(10 - GetParam())));
    EXPECT_THAT(logged(kInfo), ElementsAreArray(log_of_retries(GetParam())));
    EXPECT_EQ(sleeps.calls().size(), static_cast<std::size_t>(GetParam()));
    connection.write(frame_bytes(1, {}, {"ab"}));
    EXPECT_TRUE(handlers.wait_for(1));
    EXPECT_EQ(errors.text(), "");
}

INSTANTIATE_TEST_SUITE_P(Seconds, LateHostTest, ::testing::Values(1, 3, 10));

TEST_F(RetryTest, HoldsTheLockAndAnUnconnectedSocketWhileRetrying) {
    std::promise<void> sleeping;
    std::promise<void> checked;
    std::optional<ListeningHost> host;
    const FakeSleep sleeps([&](int) {
        sleeping.set_value();
        checked.get_future().get();
        host.emplace(path);
    });
    start_link();
    sleeping.get_future().get();
    EXPECT_FALSE(webkit_client::mu.try_lock());
    EXPECT_NE(webkit_client::server_fd, -1);
    EXPECT_EQ(fcntl(webkit_client::server_fd, F_GETFD), FD_CLOEXEC);
    checked.set_value();
    {
        // Free only when the announcement is already there to read.
        const std::scoped_lock lock(webkit_client::mu);
        const HostEnd connection = host->accept();
        EXPECT_FALSE(connection.is_quiet());
        connection.read_frame();
    }
}

class RetryDeathTest : public ::testing::Test {
  protected:
    RetryDeathTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }

    static void start_link_to_nobody() {
        webkit_client::initComm(nullptr, strdup("/nonexistent/webkit_socket2"));
    }

    static auto not_connected() {
        return EndsWith(
            "Error writing into the socket\n"
            "41 5 Could not write, error: Transport endpoint is not connected, exiting\n\n"
            "shutdowns: 1\nSIGPIPE: default\n");
    }
};

TEST_F(RetryDeathTest, ASendBetweenAttemptsEndsTheProcess) {
    EXPECT_EXIT(
        {
            std::promise<void> sleeping;
            const FakeSleep sleeps([&](int) {
                sleeping.set_value();
                pause();
            });
            start_link_to_nobody();
            sleeping.get_future().get();
            report_at_exit();
            send(6, {}, {});
        },
        ExitedWithCode(255), not_connected());
}

TEST_F(RetryDeathTest, ASendAfterGivingUpEndsTheProcess) {
    EXPECT_EXIT(
        {
            const FakeSleep sleeps;
            start_link_to_nobody();
            wait_for_log(kGaveUp.text);
            { const std::scoped_lock given_up(webkit_client::mu); }
            report_at_exit();
            send(6, {}, {});
        },
        ExitedWithCode(255), not_connected());
}

}  // namespace
}  // namespace kestrel::testing
