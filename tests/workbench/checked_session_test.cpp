// A session with a page check.
#include "tests/workbench/session_fixture.h"

namespace kestrel::testing {
namespace {

// Over when the page has sent a trace message and confirmed every answer.
class FakeCheck final : public PageCheck {
  public:
    std::string on_page_shown() override { return "shown()"; }
    std::string on_command(const Command& command, const Request& /*request*/) override {
        if (command.code == to_host("writeTraceMessage")) has_report_ = true;
        return command.code == to_host("ready") ? "begin()" : "";
    }
    void on_answer_sent() override { ++unconfirmed_; }
    void on_answer_confirmed() override { --unconfirmed_; }
    bool is_over() const override { return has_report_ && unconfirmed_ == 0; }
    std::vector<std::string> failures() const override { return {}; }
    std::string success() const override { return ""; }

  private:
    bool has_report_ = false;
    int unconfirmed_ = 0;
};

class CheckedSessionTest : public SessionTest {
  protected:
    CheckedSessionTest() : SessionTest(&check) {}

    FakeCheck check;
};

TEST_F(CheckedSessionTest, SendsTheScriptsOfTheCheck) {
    web_process.announce(11);
    session.notify_ready();
    EXPECT_EQ(web_process.read_frame(), kHostReadyMessage);
    EXPECT_EQ(web_process.read_frame(), frame_bytes(0, {}, {"shown()"}));
    web_process.write(frame_bytes(25, {}, {}));
    EXPECT_TRUE(web_process.is_quiet());
    web_process.write(frame_bytes(28, {}, {}));
    EXPECT_EQ(web_process.read_frame(), frame_bytes(0, {}, {"begin()"}));
}

TEST_F(CheckedSessionTest, ReportsTheEndOfTheCheck) {
    web_process.write(frame_bytes(18, {}, {"key", "take"}));
    web_process.write(frame_bytes(15, {}, {"report"}));
    settle();
    EXPECT_FALSE(is_over);
    web_process.write(frame_bytes(33, {}, {}));
    settle();
    EXPECT_TRUE(is_over);
}

}  // namespace
}  // namespace kestrel::testing
