#include "workbench/wire/message_filter.h"

#include <gmock/gmock.h>

#include <array>

#include "ipc/frame_builder.h"
#include "tests/workbench/wire/message_records.h"

namespace kestrel::testing {
namespace {

bool matches(std::string_view filter, const MessageRecord& record) {
    return MessageFilter(filter).matches(record);
}

TEST(MessageFilter, MatchesEverythingWithoutWords) {
    EXPECT_TRUE(MessageFilter().matches(from_page(6, {})));
    EXPECT_TRUE(matches(" \t\n", record_of("note")));
}

TEST(MessageFilter, MatchesPartsOfNamesAndItemsInAnyCase) {
    const MessageRecord record = from_page(18, {"Some Key", "onItem"});
    for (const char* filter :
         {"getItem", "GETIT", "some", "ONITEM", "key getitem", " Key  some "}) {
        EXPECT_TRUE(matches(filter, record)) << filter;
    }
    for (const char* filter : {"setItem", "keys", "somekey", "key setItem"}) {
        EXPECT_FALSE(matches(filter, record)) << filter;
    }
}

TEST(MessageFilter, MatchesWholeTypeNumbersAndProcessIds) {
    const MessageRecord record = from_page(18, {}, 4242);
    EXPECT_TRUE(matches("18", record));
    EXPECT_TRUE(matches("4242", record));
    EXPECT_FALSE(matches("1", record));
    EXPECT_FALSE(matches("42", record));
}

TEST(MessageFilter, MatchesIntegerItems) {
    const std::array<int, 2> ints{-300, 7};
    const MessageRecord record = record_of(Direction::from_page, 1, *build_frame(10, ints, {}));
    EXPECT_TRUE(matches("-300", record));
    EXPECT_FALSE(matches("8", record));
}

TEST(MessageFilter, MatchesNotesAndUnknownAndMalformedMessages) {
    EXPECT_TRUE(matches("CLOSED", record_of("connection of 7: closed")));
    EXPECT_FALSE(matches("opened", record_of("connection of 7: closed")));
    EXPECT_TRUE(matches("(unknown)", from_page(99, {"\xff"})));
    EXPECT_TRUE(matches("\xff", from_page(99, {"\xff"})));
    const webkit_message malformed{18, 1, 1, 0};
    EXPECT_TRUE(matches("getitem", record_of(Direction::from_page, 1, malformed)));
    EXPECT_FALSE(matches("key", record_of(Direction::from_page, 1, malformed)));
}

}  // namespace
}  // namespace kestrel::testing
