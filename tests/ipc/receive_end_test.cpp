// Everything that ends the reader: the host goes, a read fails, or a frame cannot be believed.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <climits>
#include <cstdlib>
#include <semaphore>
#include <thread>

#include "ipc/webkit_client.h"
#include "ipc/webkit_util.h"
#include "log/zynlog.h"
#include "tests/ipc/child_report.h"
#include "tests/ipc/log_lines.h"
#include "tests/ipc/memory_limit.h"
#include "tests/ipc/message_block.h"
#include "tests/ipc/reader_thread.h"
#include "tests/ipc/recorded_handlers.h"
#include "tests/support/link_peer.h"
#include "tests/support/log_recorder.h"
#include "tests/support/process_state.h"
#include "tests/support/stderr_capture.h"
#include "tests/support/wait_until.h"

namespace kestrel::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using namespace std::string_literals;

class ReceiveEndTest : public ::testing::Test {
  protected:
    ReceiveEndTest() : threads_before(thread_count()) {
        clear_log();
        link_fd = webkit_client::server_fd;
    }

    // Runs the reader, with what the host has written so far, until it ends by itself.
    void run_reader() {
        ReaderThread reader;
        ASSERT_TRUE(reader.ends());
    }

    // Every header read is a VERBOSE line; those above tell of trouble.
    static std::vector<LogLine> troubles() { return logged(kInfo); }

    // From now on a read that would wait fails.
    void never_wait() const { fcntl(link_fd, F_SETFL, O_NONBLOCK); }

    // The link's descriptor is the caller's to close, whatever the reader met with.
    void TearDown() override {
        EXPECT_EQ(webkit_client::server_fd, link_fd);
        EXPECT_NE(fcntl(link_fd, F_GETFD), -1);
        EXPECT_TRUE(wait_until([this] { return thread_count() == threads_before; }));
    }

    std::size_t threads_before;
    RecordedHandlers handlers{};
    LinkPeer host;
    StderrCapture errors;
    int link_fd;
};

TEST_F(ReceiveEndTest, EndOfStreamEndsTheThread) {
    host.write(frame_bytes(1, {}, {"last"}));
    ReaderThread reader;
    ASSERT_TRUE(reader.waits_for_more());
    host.hang_up();
    EXPECT_TRUE(reader.ends());
    EXPECT_THAT(handlers.dispatches(), SizeIs(1));
    EXPECT_THAT(troubles(), ElementsAre(kHostClosed));
    EXPECT_EQ(errors.text(), "");
}

class CutPayloadTest : public ReceiveEndTest, public ::testing::WithParamInterface<std::size_t> {};

TEST_P(CutPayloadTest, EndOfStreamDropsTheMessage) {
    host.write(frame_bytes(1, {}, {"never whole"}).substr(0, GetParam()));
    ReaderThread reader;
    ASSERT_TRUE(reader.waits_for_more());
    host.hang_up();
    EXPECT_TRUE(reader.ends());
    EXPECT_THAT(handlers.dispatches(), IsEmpty());
    EXPECT_THAT(troubles(), ElementsAre(kHostClosed));
    EXPECT_EQ(errors.text(), "");
}

INSTANTIATE_TEST_SUITE_P(BytesSent, CutPayloadTest, ::testing::Values(16, 17, 27));

// Leaves bytes of the link's unread at the host, whose closing then shows as a reset.
void leave_unread_bytes() {
    const Frame frame(webkit_util::wrapMessage(33, {}, {}));
    webkit_message* message = frame.get();
    webkit_client::sendMessage(message);
}

TEST_F(ReceiveEndTest, AResetIsAReadErrorOfAHeader) {
    leave_unread_bytes();
    host.hang_up();
    run_reader();
    EXPECT_THAT(troubles(), ElementsAre(bad_header_line("Connection reset by peer")));
    EXPECT_EQ(errors.text(), bad_header_text("Connection reset by peer"));
}

TEST_F(ReceiveEndTest, AResetWithinAHeaderIsAReadErrorOfIt) {
    leave_unread_bytes();
    host.write(header_bytes(1, 0, 0, 0).substr(0, 5));
    host.hang_up();
    run_reader();
    EXPECT_THAT(troubles(), ElementsAre(bad_header_line("Connection reset by peer")));
    EXPECT_EQ(errors.text(), bad_header_text("Connection reset by peer"));
}

TEST_F(ReceiveEndTest, AResetWithinAPayloadIsAReadErrorOfIt) {
    leave_unread_bytes();
    host.write(frame_bytes(1, {}, {"never whole"}).substr(0, 20));
    host.hang_up();
    run_reader();
    EXPECT_THAT(handlers.dispatches(), IsEmpty());
    EXPECT_THAT(troubles(), ElementsAre(bad_payload_line("Connection reset by peer")));
    EXPECT_EQ(errors.text(), bad_payload_text("Connection reset by peer"));
}

TEST_F(ReceiveEndTest, AnOversizeMessageEndsTheThread) {
    for (const int length : {5'000'001, INT_MAX, -1, -16, INT_MIN}) {
        clear_log();
        host.write(header_bytes(1, 0, 0, length));
        run_reader();
        EXPECT_THAT(troubles(),
                    ElementsAre(LogLine{kLogWebkit, kFatal, "BUFSIZE VALUE: 5000000"},
                                LogLine{kLogWebkit, kFatal,
                                        "s->total_len_of_string is more than the capacity BUFSIZE "
                                        "VALUE, exiting thread \n"}))
            << length;
    }
    EXPECT_THAT(handlers.dispatches(), IsEmpty());
    EXPECT_EQ(errors.text(), "");
}

TEST_F(ReceiveEndTest, AnIncompleteHeaderEndsTheThread) {
    host.write(header_bytes(1, 0, 0, 0).substr(0, 15));
    run_reader();
    EXPECT_EQ(errors.text(), bad_header_text("Success"));
    EXPECT_THAT(troubles(), ElementsAre(bad_header_line("Success")));
}

class CutHeaderTest : public ReceiveEndTest, public ::testing::WithParamInterface<std::size_t> {};

TEST_P(CutHeaderTest, EndOfStreamEndsTheThread) {
    host.write(header_bytes(1, 0, 0, 0).substr(0, GetParam()));
    host.hang_up();
    run_reader();
    EXPECT_EQ(errors.text(), bad_header_text("Success"));
    EXPECT_THAT(troubles(), ElementsAre(bad_header_line("Success")));
}

INSTANTIATE_TEST_SUITE_P(BytesSent, CutHeaderTest, ::testing::Range<std::size_t>(1, 16));

TEST_F(ReceiveEndTest, AFailedReadOfAHeaderEndsTheThread) {
    never_wait();
    run_reader();
    EXPECT_EQ(errors.text(), bad_header_text("Resource temporarily unavailable"));
    EXPECT_THAT(troubles(), ElementsAre(bad_header_line("Resource temporarily unavailable")));
}

TEST_F(ReceiveEndTest, AFailedReadOfAPayloadEndsTheThread) {
    never_wait();
    host.write(header_bytes(1, 0, 1, 3));
    run_reader();
    EXPECT_EQ(errors.text(), bad_payload_text("Resource temporarily unavailable"));
    EXPECT_THAT(troubles(), ElementsAre(bad_payload_line("Resource temporarily unavailable")));
}

TEST_F(ReceiveEndTest, WithoutDescriptorTheThreadEnds) {
    webkit_client::server_fd = -1;
    run_reader();
    webkit_client::server_fd = link_fd;
    EXPECT_EQ(errors.text(), "webkit_client::recvMessage Error in server_fd\n");
    EXPECT_THAT(logged(),
                ElementsAre(LogLine{kLogWebkit, kError,
                                    "server_fd = -1, haven't connected with server yet"}));
}

// In a process of its own: what other tests have freed would do for the buffer.
TEST(ReceiveEndDeathTest, WithoutMemoryForTheBufferTheThreadEnds) {
    if (!kMemoryCanRunOut) GTEST_SKIP() << "the sanitizer's allocator does not fail";
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            report_at_exit();
            const LinkPeer host;
            std::binary_semaphore has_reserve{0};
            std::binary_semaphore has_limit{0};
            std::thread reader([&] {
                std::free(std::malloc(1'000));  // the thread's arena, for its log lines
                has_reserve.release();
                has_limit.acquire();
                webkit_client::recvMessage();
            });
            has_reserve.acquire();
            {
                const MemoryLimit limit;
                has_limit.release();
                reader.join();
            }
            std::exit(0);
        },
        ::testing::ExitedWithCode(0),
        ::testing::StrEq("webkit_client::recvMessage could not malloc, failing\n"
                         "41 4 could not malloc 5000000, too less memory?\n"
                         "shutdowns: 0\nSIGPIPE: default\n"));
}

}  // namespace
}  // namespace kestrel::testing
