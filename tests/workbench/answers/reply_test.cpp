#include "workbench/answers/reply.h"

#include <gmock/gmock.h>

#include <vector>

#include "ipc/protocol.h"

namespace kestrel::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

// Like a session, refuses answers that do not fit into a message.
class ReplyTest : public ::testing::Test {
  protected:
    Reply reply_to(const std::string& callback) {
        return Reply(callback, [this](const Answer& answer) {
            if (!answer_frame(answer)) return false;
            sent.push_back(answer);
            return true;
        });
    }

    std::vector<Answer> sent;
};

TEST_F(ReplyTest, CallsBackWithTheValue) {
    reply_to("take")("value");
    ASSERT_EQ(sent.size(), 1U);
    EXPECT_EQ(sent[0].callback, "(() => (take\n)(\"value\"))");
}

TEST_F(ReplyTest, SendsNothingWithoutACallback) {
    reply_to("")(1);
    reply_to("")(AjaxResult{});
    EXPECT_THAT(sent, IsEmpty());
}

TEST_F(ReplyTest, SendsNullIfTheValueIsTooLong) {
    reply_to("take")(std::string(kMaxInboundPayload, '1'));
    ASSERT_EQ(sent.size(), 1U);
    EXPECT_EQ(sent[0].callback, "(() => (take\n)(null))");
}

TEST_F(ReplyTest, SendsAnErrorIfARelayedBodyIsTooLong) {
    const AjaxResult result{"7", "200", "OK", "A: b", std::string(kMaxInboundPayload, 'x')};
    reply_to("zyns_ajax_complete")(result);
    ASSERT_EQ(sent.size(), 1U);
    EXPECT_THAT(sent[0].arguments,
                ElementsAre("7", "0",
                            "the answer of " + std::to_string(kMaxInboundPayload) +
                                " bytes is too long for the page",
                            "", ""));
}

TEST_F(ReplyTest, SendsTheLongestRelayedBody) {
    AjaxResult result{"7", "200", "OK", "A: b", ""};
    const std::size_t rest = std::string("zyns_ajax_complete").size() + 1 + 2 + 4 + 3 + 5 + 1;
    result.body = std::string(kMaxInboundPayload - rest, 'x');
    reply_to("zyns_ajax_complete")(result);
    ASSERT_EQ(sent.size(), 1U);
    EXPECT_EQ(sent[0].arguments[1], "200");
}

}  // namespace
}  // namespace kestrel::testing
