// A session of a misbehaving host.
#include <gmock/gmock.h>

#include "tests/workbench/session_fixture.h"

namespace kestrel::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

class BadHostTest : public SessionTest {
  protected:
    BadHostTest() {
        web_process.announce(11);
        settle();
    }
    void ask() { web_process.write(frame_bytes(18, {}, {"key", "take"})); }

    const std::string answer = frame_bytes(1, {}, {"(() => (take\n)(null))"});
};

TEST_F(BadHostTest, DropsAnswersUntilReset) {
    session.set_misbehavior(Misbehavior::silence);
    ask();
    EXPECT_TRUE(web_process.is_quiet());
    EXPECT_THAT(lines.str(), HasSubstr(" -- bad host: Silence\n"));
    session.set_misbehavior(Misbehavior::none);
    ask();
    EXPECT_EQ(web_process.read_frame(), answer);
}

TEST_F(BadHostTest, DelaysAnswersOnly) {
    session.set_misbehavior(Misbehavior::late_answer);
    ask();
    session.notify_ready();
    EXPECT_EQ(web_process.read_frame(), kHostReadyMessage);
    EXPECT_TRUE(web_process.is_quiet());
    EXPECT_EQ(web_process.read_frame(), answer);
}

TEST_F(BadHostTest, SendsNothingAfterATruncatedAnswer) {
    session.set_misbehavior(Misbehavior::truncated);
    ask();
    settle();
    session.notify_ready();
    session.misbehave_now(Misbehavior::hang_up);
    EXPECT_EQ(web_process.read_frame(), "");  // the announced payload is incomplete
}

TEST_F(BadHostTest, HangsUp) {
    session.set_misbehavior(Misbehavior::hang_up);
    ask();
    EXPECT_TRUE(web_process.sees_end());
    run_main_loop_until([this] { return !server.has_connections(); });
    EXPECT_THAT(lines.str(), HasSubstr(" -- connection of 11: hung up on\n"));
    EXPECT_THAT(session.processes(), ElementsAre());
}

TEST_F(BadHostTest, MisbehavesImmediatelyTowardsAllProcesses) {
    session.misbehave_now(Misbehavior::wrong_type);
    EXPECT_EQ(web_process.read_frame(), frame_bytes(59, {}, {"(() => {})"}));
    session.misbehave_now(Misbehavior::oversize);
    EXPECT_EQ(web_process.read_frame().size(), 16U + 5'000'001U);
}

}  // namespace
}  // namespace kestrel::testing
