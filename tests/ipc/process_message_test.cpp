// Decoding and dispatch of one message.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <new>

#include "ipc/webkit_client.h"
#include "log/zynlog.h"
#include "tests/ipc/memory_limit.h"
#include "tests/ipc/message_block.h"
#include "tests/ipc/recorded_handlers.h"
#include "tests/support/frame_bytes.h"
#include "tests/support/log_recorder.h"

namespace kestrel::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using namespace std::string_literals;

class ProcessMessageTest : public ::testing::Test {
  protected:
    ProcessMessageTest() { clear_log(); }

    static void process(const std::string& bytes) {
        const Frame frame = message_block(bytes);
        webkit_message* message = frame.get();
        webkit_client::processMessage(message);
    }
};

LogLine dropped(int type, const std::string& reason) {
    return {kLogWebkit, kError,
            "Dropped a message of type " + std::to_string(type) + ": " + reason + "\n"};
}

constexpr auto kMisfit = "its items do not fit its header";

TEST_F(ProcessMessageTest, CallsTheHandlerOfItsTypeWithItsItems) {
    const RecordedHandlers handlers(2);
    process(frame_bytes(1, {"12", "-3"}, {"ab", ""}));
    EXPECT_THAT(handlers.dispatches(),
                ElementsAre(Dispatch{1, {12, -3}, {"ab", "", "", "", "", ""}}));
    EXPECT_THAT(logged(), IsEmpty());
}

TEST_F(ProcessMessageTest, ServesTheFirstAndTheLastSlot) {
    const RecordedHandlers handlers;
    process(frame_bytes(0, {}, {"first"}));
    process(frame_bytes(60, {}, {"last"}));
    EXPECT_THAT(handlers.dispatches(), ElementsAre(Dispatch{0, {}, {"first", "", "", "", "", ""}},
                                                   Dispatch{60, {}, {"last", "", "", "", "", ""}}));
}

TEST_F(ProcessMessageTest, PassesAtLeastSixStrings) {
    for (std::size_t sent = 0; sent <= 6; ++sent) {
        const RecordedHandlers handlers;
        process(header_bytes(1, 0, static_cast<int>(sent), static_cast<int>(2 * sent)) +
                "a\0b\0c\0d\0e\0f\0"s.substr(0, 2 * sent));
        std::vector<std::string> expected{"a", "b", "c", "d", "e", "f"};
        std::fill(expected.begin() + static_cast<std::ptrdiff_t>(sent), expected.end(), "");
        EXPECT_THAT(handlers.dispatches(), ElementsAre(Dispatch{1, {}, expected})) << sent;
    }
}

// Strings keep their memory from message to message, and nothing else.
TEST_F(ProcessMessageTest, PassesNothingOfEarlierMessages) {
    const std::string long_text(100'000, 'x');
    const RecordedHandlers handlers;
    process(frame_bytes(1, {"7", "8"}, {long_text, long_text, "c", "d", "e", "f"}));
    process(header_bytes(1, 0, 3, 1));  // its items do not fit
    process(frame_bytes(1, {"9"}, {"ab"}));
    process(frame_bytes(1, {}, {"", long_text + long_text}));
    EXPECT_THAT(handlers.dispatches(),
                ElementsAre(Dispatch{1, {}, {long_text, long_text, "c", "d", "e", "f"}},
                            Dispatch{1, {}, {"ab", "", "", "", "", ""}},
                            Dispatch{1, {}, {"", long_text + long_text, "", "", "", ""}}));
}

TEST_F(ProcessMessageTest, IsReentrant) {
    static std::vector<std::string> seen;
    RecordedHandlers handlers;
    handlers.table()[2] = [](int*, std::string* strings) { seen.push_back(strings[0]); };
    handlers.table()[1] = [](int*, std::string* strings) {
        process(frame_bytes(2, {}, {"inner"}));
        seen.push_back(strings[0]);
    };
    process(frame_bytes(1, {}, {"outer"}));
    EXPECT_THAT(seen, ElementsAre("inner", "outer"));
}

TEST_F(ProcessMessageTest, AppendsAnEmptyString) {
    for (std::size_t sent = 6; sent <= 20; ++sent) {
        const RecordedHandlers handlers(0, sent + 1);
        const std::vector<std::string> texts(sent, "x");
        process(header_bytes(1, 0, static_cast<int>(sent), static_cast<int>(2 * sent)) + [&] {
            std::string payload;
            for (const std::string& text : texts) payload.append(text).push_back('\0');
            return payload;
        }());
        std::vector<std::string> expected = texts;
        expected.emplace_back();
        EXPECT_THAT(handlers.dispatches(), ElementsAre(Dispatch{1, {}, expected})) << sent;
    }
}

TEST_F(ProcessMessageTest, IgnoresBytesBehindTheLastItem) {
    const RecordedHandlers handlers;
    process(header_bytes(1, 0, 1, 7) + "ab\0rest"s);
    EXPECT_THAT(handlers.dispatches(), ElementsAre(Dispatch{1, {}, {"ab", "", "", "", "", ""}}));
}

TEST_F(ProcessMessageTest, DropsATypeOutsideTheTable) {
    const RecordedHandlers handlers;
    for (const int type : {-1, INT_MIN, 61, 62, INT_MAX}) {
        clear_log();
        process(frame_bytes(type, {}, {"ab"}));
        EXPECT_THAT(logged(), ElementsAre(dropped(type, "no handler")));
    }
    EXPECT_THAT(handlers.dispatches(), IsEmpty());
}

TEST_F(ProcessMessageTest, DropsATypeWithoutHandler) {
    const RecordedHandlers handlers;
    for (const int type : {2, 33, 35, 59}) {
        clear_log();
        process(frame_bytes(type, {}, {"ab"}));
        EXPECT_THAT(logged(), ElementsAre(dropped(type, "no handler")));
    }
    EXPECT_THAT(handlers.dispatches(), IsEmpty());
}

TEST_F(ProcessMessageTest, DropsMessagesWithoutATable) {
    process(frame_bytes(1, {}, {"ab"}));
    EXPECT_THAT(logged(), ElementsAre(dropped(1, "no handler")));
}

TEST_F(ProcessMessageTest, DropsAPayloadCutAnywhere) {
    const RecordedHandlers handlers(2);
    const std::string payload = "12\0-3\0ab\0\0"s;
    for (std::size_t size = 0; size < payload.size(); ++size) {
        clear_log();
        process(header_bytes(34, 2, 2, static_cast<int>(size)) + payload.substr(0, size));
        EXPECT_THAT(logged(), ElementsAre(dropped(34, kMisfit))) << size;
    }
    EXPECT_THAT(handlers.dispatches(), IsEmpty());
}

TEST_F(ProcessMessageTest, DropsEveryPairOfCountsThatCannotFit) {
    const std::string payload(10, '\0');
    for (int ints = -3; ints <= 20; ++ints) {
        for (int strings = -3; strings <= 20; ++strings) {
            clear_log();
            const RecordedHandlers handlers;
            process(header_bytes(1, ints, strings, 10) + payload);
            const bool fits = ints >= 0 && strings >= 0 && ints + strings <= 10;
            EXPECT_EQ(handlers.dispatches().size(), fits ? 1U : 0U) << ints << ' ' << strings;
            EXPECT_EQ(logged().size(), fits ? 0U : 1U) << ints << ' ' << strings;
        }
    }
}

TEST_F(ProcessMessageTest, DropsCountsAtTheEndsOfTheirRange) {
    const RecordedHandlers handlers;
    for (const int count : {INT_MIN, INT_MAX}) {
        for (const auto& [ints, strings] : {std::pair{count, 0}, {0, count}, {count, count}}) {
            clear_log();
            process(header_bytes(1, ints, strings, 3) + "ab\0"s);
            EXPECT_THAT(logged(), ElementsAre(dropped(1, kMisfit))) << ints << ' ' << strings;
        }
    }
    EXPECT_THAT(handlers.dispatches(), IsEmpty());
}

TEST_F(ProcessMessageTest, DropsAMessageWhenOutOfMemory) {
    if (!kMemoryCanRunOut) GTEST_SKIP() << "the sanitizer's allocator does not fail";
    const RecordedHandlers handlers;
    const std::string bytes = header_bytes(1, 0, 5'000'000, 5'000'000) + std::string(5'000'000, 0);
    const Frame frame = message_block(bytes);
    webkit_message* message = frame.get();
    {
        const MemoryLimit limit;
        webkit_client::processMessage(message);
    }
    EXPECT_THAT(logged(), ElementsAre(dropped(1, "out of memory")));
    EXPECT_THAT(handlers.dispatches(), IsEmpty());
}

TEST_F(ProcessMessageTest, DropsAMessageWhoseHandlerIsOutOfMemory) {
    RecordedHandlers handlers;
    handlers.table()[1] = [](int*, std::string*) { throw std::bad_alloc(); };
    process(frame_bytes(1, {}, {"too much"}));
    process(frame_bytes(0, {}, {"next"}));
    EXPECT_THAT(logged(), ElementsAre(dropped(1, "out of memory")));
    EXPECT_THAT(handlers.dispatches(), ElementsAre(Dispatch{0, {}, {"next", "", "", "", "", ""}}));
}

}  // namespace
}  // namespace kestrel::testing
