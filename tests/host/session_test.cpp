#include "host/session.h"

#include <gmock/gmock.h>

#include <memory>
#include <sstream>

#include "host/message_server.h"
#include "tests/host/fake_web_process.h"
#include "tests/support/frame_bytes.h"
#include "tests/support/main_loop.h"
#include "tests/support/temporary_directory.h"

namespace kestrel::testing {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

constexpr const char* kUri = "file:///store/page.html";

const std::string kPageOffer = frame_bytes(34, {}, {kUri, "{a: 1}"});
const std::string kTaken = frame_bytes(35, {}, {kUri});
const std::string kGreeting = frame_bytes(0, {}, {"window.onHostReady && window.onHostReady();"});
const std::string kStart =
    frame_bytes(0, {}, {"window.callEveryFunction && window.callEveryFunction();"});

class SessionTest : public ::testing::Test {
  protected:
    explicit SessionTest(bool has_rehearsal = false)
        : session({kUri, "{a: 1}"}, transcript, has_rehearsal ? &rehearsal : nullptr,
                  {.load_page = [this] { ++loads; },
                   .rehearsal_over = [this] { is_rehearsal_over = true; }}) {}

    // Waits until the host has taken everything that was sent to it.
    static void settle() { run_main_loop_until_idle(); }

    int loads = 0;
    bool is_rehearsal_over = false;
    std::ostringstream lines;
    Transcript transcript{lines};
    Rehearsal rehearsal;
    TemporaryDirectory directory;
    Session session;
    MessageServer server{directory.path() + "/socket", session};
    FakeWebProcess web_process{directory.path() + "/socket"};
};

TEST_F(SessionTest, OffersThePageWhenTheEmptyPageIsShownAndTheProcessIsThere) {
    web_process.announce(11);
    EXPECT_TRUE(web_process.is_quiet());
    session.offer_page();
    EXPECT_EQ(web_process.read_frame(), kPageOffer);
}

TEST_F(SessionTest, OffersThePageToAProcessThatComesLater) {
    session.offer_page();
    EXPECT_TRUE(web_process.is_quiet());
    web_process.announce(11);
    EXPECT_EQ(web_process.read_frame(), kPageOffer);
}

TEST_F(SessionTest, OffersThePageOnceToAProcessThatAnnouncesItselfTwice) {
    web_process.announce(11);
    web_process.announce(11);
    settle();
    session.offer_page();
    EXPECT_EQ(web_process.read_frame(), kPageOffer);
    EXPECT_TRUE(web_process.is_quiet());
}

TEST_F(SessionTest, ForgetsAProcessThatHasGone) {
    web_process.announce(11);
    web_process.hang_up();
    settle();
    session.offer_page();
    session.greet_page();
    EXPECT_THAT(lines.str(), Not(HasSubstr(" -> ")));
}

TEST_F(SessionTest, LoadsThePageOnceWhenItsUrlHasBeenTaken) {
    web_process.announce(11);
    session.offer_page();
    web_process.write(frame_bytes(35, {}, {"file:///another"}));
    settle();
    EXPECT_EQ(loads, 0);
    web_process.write(kTaken + kTaken);
    settle();
    EXPECT_EQ(loads, 1);
}

TEST_F(SessionTest, LoadsNothingThatWasNotOffered) {
    web_process.announce(11);
    web_process.write(kTaken);
    settle();
    EXPECT_EQ(loads, 0);
}

TEST_F(SessionTest, GreetsThePageInEveryProcessOnceItIsShown) {
    web_process.announce(11);
    session.offer_page();
    EXPECT_EQ(web_process.read_frame(), kPageOffer);
    web_process.write(kTaken);
    settle();
    EXPECT_TRUE(web_process.is_quiet());
    session.greet_page();
    EXPECT_EQ(web_process.read_frame(), kGreeting);

    FakeWebProcess late(directory.path() + "/socket");
    late.announce(22);
    EXPECT_EQ(late.read_frame(), kGreeting);
    EXPECT_TRUE(web_process.is_quiet());
}

TEST_F(SessionTest, OffersThePageAgainForAReload) {
    web_process.announce(11);
    for (int load = 1; load <= 2; ++load) {
        session.offer_page();
        EXPECT_EQ(web_process.read_frame(), kPageOffer);
        web_process.write(kTaken);
        settle();
        EXPECT_EQ(loads, load);
        session.greet_page();
        EXPECT_EQ(web_process.read_frame(), kGreeting);
    }
}

TEST_F(SessionTest, AnswersAQuestionToWhoAskedIt) {
    FakeWebProcess other(directory.path() + "/socket");
    web_process.announce(11);
    other.announce(22);
    web_process.write(frame_bytes(18, {}, {"key", "take"}));
    EXPECT_EQ(web_process.read_frame(), frame_bytes(1, {}, {"(() => (take\n)(null))"}));
    EXPECT_TRUE(other.is_quiet());
}

TEST_F(SessionTest, KeepsItsStateForAllProcesses) {
    FakeWebProcess other(directory.path() + "/socket");
    other.write(frame_bytes(19, {}, {"key", "value", ""}));
    settle();
    web_process.write(frame_bytes(18, {}, {"key", "take"}));
    EXPECT_EQ(web_process.read_frame(), frame_bytes(1, {}, {"(() => (take\n)(\"value\"))"}));
}

TEST_F(SessionTest, WritesDownEveryMessageInBothDirections) {
    web_process.write(frame_bytes(7, {}, {}));
    web_process.announce(11);
    web_process.write(frame_bytes(18, {}, {"key", "take"}));
    web_process.read_frame();
    web_process.hang_up();
    run_main_loop_until([this] { return !server.has_connections(); });
    EXPECT_THAT(lines.str(), HasSubstr(" <-       ?   7 refresh\n"));
    EXPECT_THAT(lines.str(), HasSubstr(" <-      11  61 announce 11\n"));
    EXPECT_THAT(lines.str(), HasSubstr(" <-      11  18 getItem \"key\" \"take\"\n"));
    EXPECT_THAT(lines.str(), HasSubstr(" ->      11   1 answer \"(() => (take\\n)(null))\"\n"));
    EXPECT_THAT(lines.str(), HasSubstr(" -- connection of 11: closed\n"));
}

TEST_F(SessionTest, IgnoresMessagesThatItCannotUse) {
    web_process.write(frame_bytes(99, {}, {"x"}) + frame_bytes(33, {}, {}) +
                      header_bytes(61, 1, 0, 1) + "x" + frame_bytes(12, {}, {}));
    web_process.write(header_bytes(19, 0, 3, 5) + std::string("k\0v\0f", 5));  // one NUL missing
    web_process.write(frame_bytes(18, {}, {"k", "take"}));
    EXPECT_EQ(web_process.read_frame(), frame_bytes(1, {}, {"(() => (take\n)(null))"}));
    EXPECT_THAT(lines.str(), HasSubstr("  99 (unknown) \"x\"\n"));
    EXPECT_THAT(lines.str(), HasSubstr("  61 announce (items do not fit the header)\n"));
}

TEST_F(SessionTest, DoesNotSendAnAnswerThatTheExtensionWouldNotTake) {
    web_process.write(frame_bytes(19, {}, {"key", std::string(kMaxInboundPayload, 'x'), ""}));
    web_process.write(frame_bytes(18, {}, {"key", "take"}));
    web_process.write(frame_bytes(18, {}, {"other", "take"}));
    EXPECT_EQ(web_process.read_frame(), frame_bytes(1, {}, {"(() => (take\n)(null))"}));
    EXPECT_THAT(lines.str(), HasSubstr("-- an answer is too long for the page, not sent\n"));
}

class RehearsedSessionTest : public SessionTest {
  protected:
    RehearsedSessionTest() : SessionTest(true) {}
};

TEST_F(RehearsedSessionTest, AsksThePageToCallEverythingWhenItIsReady) {
    web_process.write(frame_bytes(25, {}, {}));
    EXPECT_TRUE(web_process.is_quiet());
    web_process.write(frame_bytes(28, {}, {}));
    EXPECT_EQ(web_process.read_frame(), kStart);
    web_process.write(frame_bytes(28, {}, {}));
    EXPECT_TRUE(web_process.is_quiet());
}

TEST_F(RehearsedSessionTest, IsOverWithTheReportAndTheLastConfirmation) {
    web_process.write(frame_bytes(28, {}, {}));
    web_process.write(frame_bytes(18, {}, {"key", "take"}));
    web_process.write(frame_bytes(15, {}, {R"({"calledBack":["getItem"]})"}));
    settle();
    EXPECT_FALSE(is_rehearsal_over);
    web_process.write(frame_bytes(33, {}, {}));
    settle();
    EXPECT_TRUE(is_rehearsal_over);
    EXPECT_THAT(rehearsal.missing(), Not(::testing::Contains("getItem was not called back")));
}

}  // namespace
}  // namespace kestrel::testing
