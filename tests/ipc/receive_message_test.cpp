// The read loop while the host keeps to the protocol, or breaks it in a way that costs one message.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <cstdio>
#include <cstdlib>
#include <future>

#include "ipc/reader.h"
#include "ipc/webkit_client.h"
#include "log/zynlog.h"
#include "tests/ipc/memory_limit.h"
#include "tests/ipc/reader_thread.h"
#include "tests/ipc/recorded_handlers.h"
#include "tests/support/link_peer.h"
#include "tests/support/log_recorder.h"
#include "tests/support/process_state.h"

namespace kestrel::testing {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using namespace std::string_literals;

class ReceiveMessageTest : public ::testing::Test {
  protected:
    ReceiveMessageTest() { clear_log(); }

    // Every header read is a VERBOSE line; those above tell of trouble.
    static std::vector<LogLine> troubles() { return logged(kInfo); }

    RecordedHandlers handlers{};
    LinkPeer host;
    ReaderThread reader;
};

// What a handler gets for one string.
Dispatch with_text(int slot, const std::string& text) {
    return {slot, {}, {text, "", "", "", "", ""}};
}

TEST_F(ReceiveMessageTest, DispatchesAMessageWithoutPayloadAtOnce) {
    host.write(header_bytes(1, 0, 0, 0));
    ASSERT_TRUE(handlers.wait_for(1));
    EXPECT_THAT(handlers.dispatches(), ElementsAre(with_text(1, "")));
}

TEST_F(ReceiveMessageTest, DispatchesMessagesInOrder) {
    std::string bytes;
    for (int i = 0; i < 1'000; ++i) bytes += frame_bytes(i % 2, {}, {std::to_string(i)});
    host.write(bytes);
    ASSERT_TRUE(handlers.wait_for(1'000));
    const std::vector<Dispatch> dispatches = handlers.dispatches();
    for (int i = 0; i < 1'000; ++i) {
        EXPECT_EQ(dispatches[static_cast<std::size_t>(i)], with_text(i % 2, std::to_string(i)));
    }
}

TEST_F(ReceiveMessageTest, LogsTheDescriptorForEveryHeader) {
    host.write(frame_bytes(1, {}, {"a"}) + frame_bytes(1, {}, {"b"}));
    ASSERT_TRUE(handlers.wait_for(2));
    const LogLine line{kLogWebkit, kVerbose,
                       "Value of server_fd " + std::to_string(webkit_client::server_fd)};
    EXPECT_THAT(logged(), ElementsAre(line, line));
}

TEST_F(ReceiveMessageTest, JoinsAPayloadThatArrivesByteByByte) {
    const std::string bytes = frame_bytes(34, {}, {"url", "resources"});
    host.write(bytes.substr(0, 16));
    for (const char byte : bytes.substr(16)) {
        ASSERT_TRUE(reader.waits_for_more());
        EXPECT_THAT(handlers.dispatches(), IsEmpty());
        host.write({&byte, 1});
    }
    ASSERT_TRUE(handlers.wait_for(1));
    EXPECT_THAT(handlers.dispatches(),
                ElementsAre(Dispatch{34, {}, {"url", "resources", "", "", "", ""}}));
}

// The kernel may split a host's write anywhere.
TEST_F(ReceiveMessageTest, JoinsAHeaderThatArrivesInTwoPieces) {
    const std::string bytes = frame_bytes(1, {}, {"text"});
    for (std::size_t size = 1; size < 16; ++size) {
        host.write(bytes.substr(0, size));
        ASSERT_TRUE(reader.waits_for_rest_of_header()) << size;
        host.write(bytes.substr(size));
        ASSERT_TRUE(handlers.wait_for(size)) << size;
    }
    EXPECT_THAT(handlers.dispatches(), Each(with_text(1, "text")));
    EXPECT_THAT(troubles(), IsEmpty());
}

// Few pieces: all of them must arrive within a second, on a loaded machine, too.
TEST_F(ReceiveMessageTest, JoinsAHeaderThatArrivesInManyPieces) {
    const std::string bytes = frame_bytes(1, {}, {"text"});
    for (const std::size_t begin : {0U, 5U, 10U}) {
        host.write(bytes.substr(begin, 5));
        ASSERT_TRUE(reader.waits_for_rest_of_header());
    }
    host.write(bytes.substr(15));
    ASSERT_TRUE(handlers.wait_for(1));
    EXPECT_THAT(handlers.dispatches(), ElementsAre(with_text(1, "text")));
    EXPECT_THAT(troubles(), IsEmpty());
}

TEST_F(ReceiveMessageTest, WaitsForTheRestOfAHeaderAfterASignal) {
    const std::string bytes = frame_bytes(1, {}, {"after the signal"});
    host.write(bytes.substr(0, 7));
    ASSERT_TRUE(reader.waits_for_rest_of_header());
    ASSERT_TRUE(reader.interrupt());
    host.write(bytes.substr(7));
    ASSERT_TRUE(handlers.wait_for(1));
    EXPECT_THAT(troubles(), IsEmpty());
}

TEST_F(ReceiveMessageTest, AcceptsAPayloadOfFiveMillionBytes) {
    std::string text;
    while (text.size() < 4'999'999) text += std::to_string(text.size()) + ' ';
    text.resize(4'999'999);
    host.write(frame_bytes(1, {}, {text}));
    ASSERT_TRUE(handlers.wait_for(1));
    EXPECT_TRUE(handlers.dispatches()[0] == with_text(1, text));
    EXPECT_THAT(troubles(), IsEmpty());
}

// The buffer for five million bytes is reserved, not filled.
TEST(ReceiveMemory, IsUsedOnlyAsMessagesFillIt) {
    if (!kMemoryCanRunOut) GTEST_SKIP() << "the sanitizer fills what it reserves";
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            const RecordedHandlers handlers;
            const LinkPeer host;
            const std::size_t before = resident_bytes();
            const ReaderThread reader;
            host.write(frame_bytes(1, {}, {"ab"}));
            handlers.wait_for(1);
            const std::size_t growth = resident_bytes() - before;
            std::fprintf(stderr, "%zu bytes more are resident\n", growth);
            std::_Exit(growth < 1'000'000 ? 0 : 1);
        },
        ::testing::ExitedWithCode(0), "");
}

TEST_F(ReceiveMessageTest, AShortMessageContainsNothingOfALongOne) {
    host.write(frame_bytes(1, {}, {std::string(100'000, 'x')}) + frame_bytes(1, {}, {""}) +
               frame_bytes(1, {}, {"ab"}));
    ASSERT_TRUE(handlers.wait_for(3));
    EXPECT_EQ(handlers.dispatches()[1], with_text(1, ""));
    EXPECT_EQ(handlers.dispatches()[2], with_text(1, "ab"));
}

TEST_F(ReceiveMessageTest, RepeatsAnInterruptedReadOfAHeader) {
    ASSERT_TRUE(reader.waits_for_more());
    ASSERT_TRUE(reader.interrupt());
    host.write(frame_bytes(1, {}, {"after the signal"}));
    EXPECT_TRUE(handlers.wait_for(1));
    EXPECT_THAT(troubles(), IsEmpty());
}

TEST_F(ReceiveMessageTest, RepeatsAnInterruptedReadOfAPayload) {
    const std::string bytes = frame_bytes(1, {}, {"after the signal"});
    host.write(bytes.substr(0, 20));
    ASSERT_TRUE(reader.waits_for_more());
    ASSERT_TRUE(reader.interrupt());
    host.write(bytes.substr(20));
    ASSERT_TRUE(handlers.wait_for(1));
    EXPECT_THAT(handlers.dispatches(), ElementsAre(with_text(1, "after the signal")));
    EXPECT_THAT(troubles(), IsEmpty());
}

TEST_F(ReceiveMessageTest, ContinuesAfterADroppedMessage) {
    const std::vector<std::string> bogus{
        frame_bytes(-1, {}, {"type below the table"}),
        frame_bytes(61, {}, {"type behind the table"}),
        frame_bytes(INT_MAX, {}, {"type far behind the table"}),
        frame_bytes(2, {}, {"type without handler"}),
        header_bytes(1, -1, 1, 3) + "ab\0"s,
        header_bytes(1, 0, -1, 3) + "ab\0"s,
        header_bytes(1, 0, 4, 3) + "ab\0"s,
        header_bytes(1, INT_MAX, INT_MAX, 3) + "ab\0"s,
        header_bytes(1, 1, 0, 0),
        header_bytes(1, 0, 1, 3) + "abc"s,
        header_bytes(1, 1, 1, 3) + "7\0b"s,
    };
    for (std::size_t i = 0; i < bogus.size(); ++i) {
        clear_log();
        host.write(bogus[i] + frame_bytes(1, {}, {"next"}));
        ASSERT_TRUE(handlers.wait_for(i + 1));
        EXPECT_EQ(troubles().size(), 1U) << i;
    }
    EXPECT_THAT(handlers.dispatches(), Each(with_text(1, "next")));
}

TEST_F(ReceiveMessageTest, ContinuesAfterATruncatedPayload) {
    const std::string payload = "12\0-3\0ab\0\0"s;
    for (std::size_t size = 0; size < payload.size(); ++size) {
        clear_log();
        host.write(header_bytes(1, 2, 2, static_cast<int>(size)) + payload.substr(0, size) +
                   frame_bytes(1, {}, {"next"}));
        ASSERT_TRUE(handlers.wait_for(size + 1));
        EXPECT_EQ(troubles().size(), 1U) << size;
    }
    EXPECT_THAT(handlers.dispatches(), Each(with_text(1, "next")));
}

TEST_F(ReceiveMessageTest, HandlersCanTellThatTheyRunOnTheReader) {
    static std::promise<bool> ran_on_reader;
    ran_on_reader = {};
    handlers.table()[5] = [](int*, std::string*) { ran_on_reader.set_value(on_reader_thread()); };
    host.write(header_bytes(5, 0, 0, 0));
    EXPECT_TRUE(ran_on_reader.get_future().get());
    EXPECT_FALSE(on_reader_thread());
}

}  // namespace
}  // namespace kestrel::testing
