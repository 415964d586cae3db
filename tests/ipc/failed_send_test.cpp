// Sends that fail end the whole process, in one documented way.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <string>
#include <thread>

#include "ipc/send.h"
#include "ipc/webkit_client.h"
#include "tests/ipc/child_report.h"
#include "tests/ipc/reader_thread.h"
#include "tests/ipc/recorded_handlers.h"
#include "tests/support/link_peer.h"

namespace kestrel::testing {
namespace {

using ::testing::ContainsRegex;
using ::testing::ExitedWithCode;
using ::testing::StrEq;

void send_text(std::string_view text) { send(19, {}, std::array{text}); }

auto could_not_write(const std::string& reason) {
    return StrEq("Error writing into the socket\n41 5 Could not write, error: " + reason +
                 ", exiting\n\nshutdowns: 1\nSIGPIPE: default\n");
}

class FailedSendDeathTest : public ::testing::Test {
  protected:
    FailedSendDeathTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

TEST_F(FailedSendDeathTest, AHostThatHasGoneEndsTheProcess) {
    EXPECT_EXIT(
        {
            report_at_exit();
            LinkPeer host;
            host.hang_up();
            send_text("ab");
        },
        ExitedWithCode(255), could_not_write("Broken pipe"));
}

TEST_F(FailedSendDeathTest, AHostThatHasGoneEndsTheProcessAtALargeFrame) {
    EXPECT_EXIT(
        {
            report_at_exit();
            LinkPeer host;
            host.hang_up();
            send_text(std::string(1'000'000, 'x'));
        },
        ExitedWithCode(255), could_not_write("Broken pipe"));
}

TEST_F(FailedSendDeathTest, AHostThatWentWithBytesUnreadEndsTheProcess) {
    EXPECT_EXIT(
        {
            report_at_exit();
            LinkPeer host;
            send_text("never read");
            host.hang_up();
            send_text("ab");
        },
        ExitedWithCode(255), could_not_write("Broken pipe"));
}

TEST_F(FailedSendDeathTest, AFullSocketThatMayNotWaitEndsTheProcess) {
    EXPECT_EXIT(
        {
            report_at_exit();
            const LinkPeer host;
            fcntl(webkit_client::server_fd, F_SETFL, O_NONBLOCK);
            const std::string block(1'000, 'x');
            while (::send(webkit_client::server_fd, block.data(), block.size(), 0) > 0) {
            }
            send_text("ab");
        },
        ExitedWithCode(255), could_not_write("Resource temporarily unavailable"));
}

TEST_F(FailedSendDeathTest, APartialWriteEndsTheProcess) {
    EXPECT_EXIT(
        {
            report_at_exit();
            const LinkPeer host;
            fcntl(webkit_client::server_fd, F_SETFL, O_NONBLOCK);
            send_text(std::string(5'000'000, 'x'));
        },
        ExitedWithCode(255),
        ContainsRegex("^41 5 Partial write, exiting, value of wrv is [1-9][0-9]*\n\n"
                      "shutdowns: 1\nSIGPIPE: default\n$"));
}

TEST_F(FailedSendDeathTest, AClosedDescriptorEndsTheProcess) {
    EXPECT_EXIT(
        {
            report_at_exit();
            webkit_client::server_fd = 999;
            send_text("ab");
        },
        ExitedWithCode(255), could_not_write("Bad file descriptor"));
}

TEST_F(FailedSendDeathTest, OneOfSeveralThreadsEndsTheProcess) {
    EXPECT_EXIT(
        {
            report_at_exit();
            LinkPeer host;
            host.hang_up();
            std::thread first([] { send_text("ab"); });
            std::thread second([] { send_text("cd"); });
            first.join();
            second.join();
        },
        ExitedWithCode(255), could_not_write("Broken pipe"));
}

TEST_F(FailedSendDeathTest, AFailedSendOfTheReaderEndsTheProcess) {
    EXPECT_EXIT(
        {
            report_at_exit();
            RecordedHandlers handlers;
            handlers.table()[1] = [](int*, std::string* strings) { send_text(strings[0]); };
            LinkPeer host;
            host.write(frame_bytes(1, {}, {"ab"}));
            host.hang_up();
            ReaderThread reader;
            reader.ends();
        },
        ExitedWithCode(255), could_not_write("Broken pipe"));
}

}  // namespace
}  // namespace kestrel::testing
