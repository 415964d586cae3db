#include "workbench/wire/misbehavior.h"

#include <gmock/gmock.h>

#include "ipc/frame_builder.h"
#include "tests/support/frame_bytes.h"

namespace kestrel::testing {
namespace {

using ::testing::IsNull;

class MisbehaviorTest : public ::testing::Test {
  protected:
    // The bytes sent for the answer "callback", "data".
    std::string sent(Misbehavior kind) {
        outgoing = misbehave(
            kind, build_frame(1, {}, std::array<std::string_view, 2>{"callback", "data"}));
        if (!outgoing.frame) return "";
        return std::string(reinterpret_cast<const char*>(outgoing.frame.get()), outgoing.size);
    }

    Outgoing outgoing;
    const std::string answer = frame_bytes(1, {}, {"callback", "data"});
};

TEST_F(MisbehaviorTest, SendsTheAnswerUnchangedByDefault) {
    EXPECT_EQ(sent(Misbehavior::none), answer);
    EXPECT_EQ(outgoing.delay.count(), 0);
    EXPECT_FALSE(outgoing.falls_silent || outgoing.hangs_up);
}

TEST_F(MisbehaviorTest, SendsALateAnswerFiveSecondsLater) {
    EXPECT_EQ(sent(Misbehavior::late_answer), answer);
    EXPECT_EQ(outgoing.delay.count(), 5);
}

TEST_F(MisbehaviorTest, SendsAnUnknownType) {
    EXPECT_EQ(sent(Misbehavior::wrong_type), frame_bytes(59, {}, {"callback", "data"}));
}

TEST_F(MisbehaviorTest, TruncatesTheAnswerAndFallsSilent) {
    EXPECT_EQ(sent(Misbehavior::truncated), answer.substr(0, 16 + 7));
    EXPECT_TRUE(outgoing.falls_silent);
    EXPECT_FALSE(outgoing.hangs_up);
}

TEST_F(MisbehaviorTest, SendsOneByteOverTheExtensionsLimit) {
    const std::string oversize = sent(Misbehavior::oversize);
    EXPECT_EQ(oversize.size(), 16U + 5'000'001U);
    EXPECT_EQ(oversize.substr(0, 16), header_bytes(1, 0, 1, 5'000'001));
}

TEST_F(MisbehaviorTest, SendsNothing) {
    EXPECT_EQ(sent(Misbehavior::silence), "");
    EXPECT_FALSE(outgoing.falls_silent || outgoing.hangs_up);
}

TEST_F(MisbehaviorTest, HangsUp) {
    EXPECT_EQ(sent(Misbehavior::hang_up), "");
    EXPECT_TRUE(outgoing.hangs_up);
}

TEST_F(MisbehaviorTest, DoesNothingWithoutAnAnswer) {
    for (const MisbehaviorRow& row : kMisbehaviors) {
        const Outgoing nothing = misbehave(row.kind, nullptr);
        EXPECT_THAT(nothing.frame, IsNull());
        EXPECT_FALSE(nothing.falls_silent || nothing.hangs_up);
    }
}

}  // namespace
}  // namespace kestrel::testing
