// Taking frames apart, those included that no honest sender builds.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>

#include "ipc/frame.h"
#include "ipc/frame_builder.h"
#include "ipc/items.h"
#include "tests/ipc/message_block.h"
#include "tests/support/frame_bytes.h"

namespace kestrel::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using namespace std::string_literals;

// A frame whose header announces `payload` with these counts.
Frame frame_with_counts(int ints, int strings, const std::string& payload) {
    return message_block(header_bytes(1, ints, strings, static_cast<int>(payload.size())) +
                         payload);
}

bool decodes(int ints, int strings, const std::string& payload) {
    Items items;
    return decode_items(*frame_with_counts(ints, strings, payload), items);
}

TEST(DecodeItemsTest, ReadsIntegersThenStrings) {
    Items items;
    ASSERT_TRUE(decode_items(*message_block(frame_bytes(9, {"12", "-3"}, {"ab", ""})), items));
    EXPECT_THAT(items.ints, ElementsAre(12, -3));
    EXPECT_THAT(items.strings, ElementsAre("ab", ""));
}

TEST(DecodeItemsTest, ReadsAFrameWithoutItems) {
    Items items;
    ASSERT_TRUE(decode_items(*message_block(frame_bytes(6, {}, {})), items));
    EXPECT_THAT(items.ints, IsEmpty());
    EXPECT_THAT(items.strings, IsEmpty());
}

TEST(DecodeItemsTest, ReadsBackWhatWasBuilt) {
    const std::vector<int> ints{INT_MIN, -1, 0, INT_MAX};
    const std::vector<std::string_view> strings{"", "\xC3\xA9\n", "x"};
    Items items;
    ASSERT_TRUE(decode_items(*build_frame(9, ints, strings), items));
    EXPECT_THAT(items.ints, ::testing::ElementsAreArray(ints));
    EXPECT_THAT(items.strings, ::testing::ElementsAreArray(strings));
}

TEST(DecodeItemsTest, ReadsTextThatIsNotANumberAsZero) {
    Items items;
    ASSERT_TRUE(decode_items(*message_block(frame_bytes(9, {"abc", "7"}, {"ab"})), items));
    EXPECT_THAT(items.ints, ElementsAre(0, 7));
    EXPECT_THAT(items.strings, ElementsAre("ab"));
}

TEST(DecodeItemsTest, IgnoresBytesBehindTheLastItem) {
    Items items;
    ASSERT_TRUE(decode_items(*frame_with_counts(1, 1, "7\0ab\0rest"s), items));
    EXPECT_THAT(items.ints, ElementsAre(7));
    EXPECT_THAT(items.strings, ElementsAre("ab"));
}

TEST(DecodeItemsTest, RefusesAPayloadCutAnywhere) {
    const std::string payload = "12\0-3\0ab\0\0"s;
    ASSERT_TRUE(decodes(2, 2, payload));
    for (std::size_t size = 0; size < payload.size(); ++size) {
        EXPECT_FALSE(decodes(2, 2, payload.substr(0, size))) << size;
    }
}

TEST(DecodeItemsTest, RefusesAnUnterminatedItem) {
    EXPECT_FALSE(decodes(1, 0, "7"));
    EXPECT_FALSE(decodes(0, 1, "ab"));
    EXPECT_FALSE(decodes(1, 1, "7\0ab"s));
    EXPECT_FALSE(decodes(0, 2, "a\0b"s));
}

TEST(DecodeItemsTest, RefusesNegativeCounts) {
    for (const int count : {-1, -2, INT_MIN}) {
        EXPECT_FALSE(decodes(count, 0, "7\0"s)) << count;
        EXPECT_FALSE(decodes(0, count, "7\0"s)) << count;
        EXPECT_FALSE(decodes(count, 1, "7\0"s)) << count;
    }
    EXPECT_FALSE(decodes(-1, 2, "7\0"s));
}

TEST(DecodeItemsTest, AcceptsOneItemPerPayloadByteAndNoMore) {
    for (int bytes = 0; bytes <= 20; ++bytes) {
        const std::string payload(static_cast<std::size_t>(bytes), '\0');
        EXPECT_TRUE(decodes(bytes, 0, payload)) << bytes;
        EXPECT_TRUE(decodes(0, bytes, payload)) << bytes;
        EXPECT_FALSE(decodes(bytes + 1, 0, payload)) << bytes;
        EXPECT_FALSE(decodes(1, bytes, payload)) << bytes;
    }
}

TEST(DecodeItemsTest, RefusesHugeCountsBeforeAllocatingForThem) {
    EXPECT_FALSE(decodes(INT_MAX, 0, "7\0"s));
    EXPECT_FALSE(decodes(0, INT_MAX, "7\0"s));
    EXPECT_FALSE(decodes(INT_MAX, INT_MAX, "7\0"s));
}

TEST(CountsArePossibleTest, ChecksOnlyTheHeader) {
    EXPECT_TRUE(counts_are_possible({1, 0, 0, 0}));
    EXPECT_TRUE(counts_are_possible({1, 2, 3, 5}));
    EXPECT_TRUE(counts_are_possible({1, 0, INT_MAX, INT_MAX}));
    EXPECT_FALSE(counts_are_possible({1, 2, 3, 4}));
    EXPECT_FALSE(counts_are_possible({1, 1, 0, 0}));
    EXPECT_FALSE(counts_are_possible({1, -1, 2, 5}));
    EXPECT_FALSE(counts_are_possible({1, 2, -1, 5}));
    EXPECT_FALSE(counts_are_possible({1, 0, 0, -1}));
    EXPECT_FALSE(counts_are_possible({1, INT_MAX, INT_MAX, INT_MAX}));
}

}  // namespace
}  // namespace kestrel::testing
