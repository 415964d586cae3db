#include "workbench/wire/answer_pairing.h"

#include <gmock/gmock.h>

#include "tests/workbench/wire/message_records.h"

namespace kestrel::testing {
namespace {

using ::testing::Eq;
using ::testing::Optional;

class AnswerPairingTest : public ::testing::Test {
  protected:
    std::optional<std::uint64_t> take(const MessageRecord& record) {
        return pairing.add(++serial, record);
    }

    AnswerPairing pairing;
    std::uint64_t serial = 0;
};

TEST_F(AnswerPairingTest, MatchesTheRequestWhoseCallbackIsCalled) {
    take(from_page(18, {"key", "onItem"}));
    take(from_page(12, {"id", "onList"}));
    EXPECT_THAT(take(to_page(1, {"(() => (onList\n)([\"onItem\"]))"})), Optional(2));
    EXPECT_THAT(take(to_page(1, {"(() => (onItem\n)(null))"})), Optional(1));
    EXPECT_EQ(take(to_page(1, {"(() => (onItem\n)(null))"})), std::nullopt);
}

TEST_F(AnswerPairingTest, FindsTheCallbackOfEachRequest) {
    take(from_page(2, {"onCapabilities", "page"}));
    EXPECT_EQ(take(to_page(1, {"page"})), std::nullopt);
    EXPECT_THAT(take(to_page(1, {"onCapabilities"})), Optional(1));
    take(from_page(11, {"url", "GET", "", "", "7", "zyns_ajax_complete"}));
    EXPECT_THAT(take(to_page(1, {"zyns_ajax_complete", "7", "200", "OK", "", ""})), Optional(4));
    take(from_page(20, {"address"}));
    EXPECT_EQ(take(to_page(1, {"address"})), std::nullopt);
}

TEST_F(AnswerPairingTest, PrefersTheOldestRequestOfTheSameCallback) {
    take(from_page(18, {"first", "take"}));
    take(from_page(18, {"second", "take"}));
    EXPECT_THAT(take(to_page(1, {"take"})), Optional(1));
    EXPECT_THAT(take(to_page(1, {"take"})), Optional(2));
}

TEST_F(AnswerPairingTest, IgnoresPartsOfLongerNames) {
    take(from_page(18, {"key", "take"}));
    EXPECT_EQ(take(to_page(1, {"takeAll"})), std::nullopt);
    EXPECT_EQ(take(to_page(1, {"overtake(1)"})), std::nullopt);
    EXPECT_THAT(take(to_page(1, {"takeAll || take"})), Optional(1));
}

TEST_F(AnswerPairingTest, PrefersTheLongestCallbackAtAPosition) {
    take(from_page(18, {"key", "store"}));
    take(from_page(18, {"key", "store.take"}));
    EXPECT_THAT(take(to_page(1, {"store.take"})), Optional(2));
}

TEST_F(AnswerPairingTest, MatchesWithinOneProcessOnly) {
    take(from_page(18, {"key", "take"}, 11));
    take(from_page(18, {"key", "take"}, 22));
    EXPECT_THAT(take(to_page(1, {"take"}, 22)), Optional(2));
    EXPECT_EQ(take(to_page(1, {"take"}, 33)), std::nullopt);
}

TEST_F(AnswerPairingTest, DropsRequestsOfAnEarlierProcessWithTheSameId) {
    take(from_page(18, {"key", "take"}));
    MessageRecord announcement = from_page(61, {});
    take(announcement);
    EXPECT_EQ(take(to_page(1, {"take"})), std::nullopt);
}

TEST_F(AnswerPairingTest, UsesTheRecordsAnswerTo) {
    take(from_page(18, {"key", "take"}));
    take(from_page(18, {"key", "take"}));
    MessageRecord answer = to_page(1, {"take"});
    answer.answer_to = 2;
    EXPECT_THAT(take(answer), Optional(2));
    EXPECT_THAT(take(to_page(1, {"take"})), Optional(1));
}

TEST_F(AnswerPairingTest, DropsTheOldestOfTooManyRequests) {
    for (int i = 0; i < 1'025; ++i) take(from_page(18, {"key", "take"}));
    EXPECT_THAT(take(to_page(1, {"take"})), Optional(2));
}

TEST_F(AnswerPairingTest, IgnoresOtherMessagesAndNotes) {
    take(record_of("take"));
    take(from_page(18, {}));
    take(from_page(18, {"key", ""}));
    take(from_page(99, {"take"}));
    EXPECT_EQ(take(to_page(0, {"take"})), std::nullopt);
    EXPECT_EQ(take(to_page(1, {})), std::nullopt);
    EXPECT_EQ(take(to_page(1, {"take"})), std::nullopt);
}

}  // namespace
}  // namespace kestrel::testing
