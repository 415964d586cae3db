// Payloads that come in pieces.
#include "ipc/item_decoder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace kestrel::testing {
namespace {

using ::testing::ElementsAre;
using namespace std::string_literals;

const std::string kPayload = "12\0-345\0\0ab\0\xC3\xA9\0rest"s;
const webkit_message kHeader{1, 2, 3, static_cast<int>(kPayload.size())};

class ItemDecoderTest : public ::testing::Test {
  protected:
    bool take_in_pieces(std::size_t size) {
        ItemDecoder decoder(kHeader, items);
        for (std::string_view rest = kPayload; !rest.empty();) {
            const std::string_view piece = rest.substr(0, size);
            decoder.take(piece);
            rest.remove_prefix(piece.size());
        }
        return decoder.is_complete();
    }

    Items items;
};

TEST_F(ItemDecoderTest, ReadsTheSameFromPiecesOfEachSize) {
    for (std::size_t size = 1; size <= kPayload.size(); ++size) {
        ASSERT_TRUE(take_in_pieces(size)) << size;
        EXPECT_THAT(items.ints, ElementsAre(12, -345)) << size;
        EXPECT_THAT(items.strings, ElementsAre("", "ab", "\xC3\xA9")) << size;
    }
}

TEST_F(ItemDecoderTest, IsCompleteWithTheLastItemsNul) {
    ItemDecoder decoder(kHeader, items);
    const std::size_t whole = kPayload.size() - std::string_view("rest").size();
    for (std::size_t i = 0; i < whole; ++i) {
        EXPECT_FALSE(decoder.is_complete()) << i;
        decoder.take(std::string_view(kPayload).substr(i, 1));
    }
    EXPECT_TRUE(decoder.is_complete());
}

TEST_F(ItemDecoderTest, LeavesNothingOfEarlierItems) {
    items.ints = {7, 8, 9};
    items.strings = {"long before", "x", "y", "z"};
    ASSERT_TRUE(take_in_pieces(5));
    EXPECT_THAT(items.ints, ElementsAre(12, -345));
    EXPECT_THAT(items.strings, ElementsAre("", "ab", "\xC3\xA9"));
}

TEST_F(ItemDecoderTest, TakesNothingBehindAnImpossibleHeader) {
    for (const webkit_message header : {webkit_message{1, -1, 1, 9}, webkit_message{1, 5, 5, 9}}) {
        ItemDecoder decoder(header, items);
        decoder.take(std::string_view("1\0002\000", 4));
        EXPECT_FALSE(decoder.is_complete());
    }
}

}  // namespace
}  // namespace kestrel::testing
