#include "workbench/session.h"

#include <gmock/gmock.h>

#include <array>

#include "ipc/frame_builder.h"
#include "tests/workbench/session_fixture.h"

namespace kestrel::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

const std::string kPageOffer = frame_bytes(34, {}, {kUri, "{a: 1}"});
const std::string kTaken = frame_bytes(35, {}, {kUri});

TEST_F(SessionTest, OffersThePageOnceTheEmptyPageIsShownAndTheProcessConnected) {
    web_process.announce(11);
    EXPECT_TRUE(web_process.is_quiet());
    session.offer_page();
    EXPECT_EQ(web_process.read_frame(), kPageOffer);
}

TEST_F(SessionTest, OffersThePageToALaterProcess) {
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

TEST_F(SessionTest, ForgetsADisconnectedProcess) {
    web_process.announce(11);
    web_process.hang_up();
    settle();
    session.offer_page();
    session.notify_ready();
    EXPECT_THAT(lines.str(), Not(HasSubstr(" -> ")));
}

TEST_F(SessionTest, LoadsThePageOnceWhenItsUrlIsConfirmed) {
    web_process.announce(11);
    session.offer_page();
    web_process.write(frame_bytes(35, {}, {"file:///another"}));
    settle();
    EXPECT_EQ(loads, 0);
    web_process.write(kTaken + kTaken);
    settle();
    EXPECT_EQ(loads, 1);
}

TEST_F(SessionTest, LoadsNothingWithoutAnOffer) {
    web_process.announce(11);
    web_process.write(kTaken);
    settle();
    EXPECT_EQ(loads, 0);
}

TEST_F(SessionTest, SendsHostReadyToEveryProcessOncePageIsShown) {
    web_process.announce(11);
    session.offer_page();
    EXPECT_EQ(web_process.read_frame(), kPageOffer);
    web_process.write(kTaken);
    settle();
    EXPECT_TRUE(web_process.is_quiet());
    session.notify_ready();
    EXPECT_EQ(web_process.read_frame(), kHostReadyMessage);

    FakeWebProcess late(directory.path() + "/socket");
    late.announce(22);
    EXPECT_EQ(late.read_frame(), kHostReadyMessage);
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
        session.notify_ready();
        EXPECT_EQ(web_process.read_frame(), kHostReadyMessage);
    }
}

TEST_F(SessionTest, AnswersTheRequestingProcess) {
    FakeWebProcess other(directory.path() + "/socket");
    web_process.announce(11);
    other.announce(22);
    web_process.write(frame_bytes(18, {}, {"key", "take"}));
    EXPECT_EQ(web_process.read_frame(), frame_bytes(1, {}, {"(() => (take\n)(null))"}));
    EXPECT_TRUE(other.is_quiet());
}

TEST_F(SessionTest, SharesItsStateAmongProcesses) {
    FakeWebProcess other(directory.path() + "/socket");
    other.write(frame_bytes(19, {}, {"key", "value", ""}));
    settle();
    web_process.write(frame_bytes(18, {}, {"key", "take"}));
    EXPECT_EQ(web_process.read_frame(), frame_bytes(1, {}, {"(() => (take\n)(\"value\"))"}));
}

TEST_F(SessionTest, TranscribesEveryMessageInBothDirections) {
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

TEST_F(SessionTest, IgnoresUnknownAndMalformedMessages) {
    web_process.write(frame_bytes(99, {}, {"x"}) + frame_bytes(33, {}, {}) +
                      header_bytes(61, 1, 0, 1) + "x" + frame_bytes(12, {}, {}));
    web_process.write(header_bytes(19, 0, 3, 5) + std::string("k\0v\0f", 5));  // one NUL missing
    web_process.write(frame_bytes(18, {}, {"k", "take"}));
    EXPECT_EQ(web_process.read_frame(), frame_bytes(1, {}, {"(() => (take\n)(null))"}));
    EXPECT_THAT(lines.str(), HasSubstr("  99 (unknown) \"x\"\n"));
    EXPECT_THAT(lines.str(), HasSubstr("  61 announce (items do not fit the header)\n"));
}

TEST_F(SessionTest, AnswersNullIfTheAnswerIsTooLong) {
    fakes.database.set_item("key", std::string(kMaxInboundPayload, 'x'));
    web_process.write(frame_bytes(18, {}, {"key", "take"}));
    EXPECT_EQ(web_process.read_frame(), frame_bytes(1, {}, {"(() => (take\n)(null))"}));
    EXPECT_THAT(lines.str(), HasSubstr("-- an answer is too long for the page, not sent\n"));
}

TEST_F(SessionTest, AnswersLaterIfTheProcessIsStillConnected) {
    FakeWebProcess other(directory.path() + "/socket");
    fakes.user_interface.delays_answers = true;
    web_process.write(frame_bytes(22, {}, {"", "", "text", "Close", "take"}));
    other.write(frame_bytes(22, {}, {"", "", "text", "Close", "take"}));
    settle();
    EXPECT_TRUE(web_process.is_quiet());
    other.hang_up();
    settle();
    fakes.user_interface.release();
    EXPECT_EQ(web_process.read_frame(), frame_bytes(1, {}, {"(() => (take\n)(\"Close\"))"}));
    EXPECT_TRUE(web_process.is_quiet());
}

TEST_F(SessionTest, AnswersNullAndReportsWhyAnActionFails) {
    fakes.break_database();
    web_process.write(frame_bytes(18, {}, {"key", "take"}));
    EXPECT_EQ(web_process.read_frame(), frame_bytes(1, {}, {"(() => (take\n)(null))"}));
    EXPECT_THAT(fakes.user_interface.shown, ElementsAre(StartsWith("getItem: ")));
}

TEST_F(SessionTest, SendsAComposedMessageToOneProcessOrToAll) {
    FakeWebProcess other(directory.path() + "/socket");
    web_process.announce(11);
    other.announce(22);
    settle();
    EXPECT_THAT(session.processes(), ElementsAre(11, 22));
    const std::string script = frame_bytes(0, {}, {"run()"});
    const Frame frame = build_frame(0, {}, std::array<std::string_view, 1>{"run()"});
    session.send_to(22, *frame);
    EXPECT_EQ(other.read_frame(), script);
    EXPECT_TRUE(web_process.is_quiet());
    session.send_to(0, *frame);
    EXPECT_EQ(other.read_frame(), script);
    EXPECT_EQ(web_process.read_frame(), script);
}

TEST_F(SessionTest, LogsEachMessageAndTheRequestOfAnAnswer) {
    MessageLog log;
    transcript.log_to(&log);
    web_process.announce(11);
    web_process.write(frame_bytes(18, {}, {"key", "take"}) + frame_bytes(18, {}, {"key", "take"}));
    EXPECT_EQ(web_process.read_frame(), frame_bytes(1, {}, {"(() => (take\n)(null))"}));
    EXPECT_EQ(web_process.read_frame(), frame_bytes(1, {}, {"(() => (take\n)(null))"}));
    transcript.note("a note");
    std::vector<std::uint64_t> answered;
    for (const LoggedMessage& row : log.rows()) answered.push_back(row.record->answer_to);
    EXPECT_THAT(answered, ElementsAre(0, 0, 2, 0, 4, 0));
    EXPECT_EQ(log.rows().back().record->note, "a note");
}

}  // namespace
}  // namespace kestrel::testing
