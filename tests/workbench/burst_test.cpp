// A burst of messages on a real socket.
#include <glib.h>
#include <gmock/gmock.h>

#include <algorithm>
#include <fstream>
#include <ostream>
#include <string>

#include "tests/support/frame_bytes.h"
#include "tests/support/main_loop.h"
#include "tests/support/temporary_directory.h"
#include "tests/workbench/answers/fake_services.h"
#include "tests/workbench/wire/fake_web_process.h"
#include "trace/frame_text.h"
#include "workbench/session.h"
#include "workbench/wire/message_server.h"

namespace kestrel::testing {
namespace {

constexpr int kBurst = 100'000;
constexpr int kDrawingPriority = G_PRIORITY_HIGH_IDLE + 20;  // GDK's
constexpr std::size_t kPiece = 65'536;                       // read at once by a connection

std::string message(int number) {
    return frame_bytes(5, {}, {"message " + std::to_string(number)});
}

// Between the server and the session: requests a redraw for each message, like the window, and
// counts the messages until it is redrawn.
class Screen final : public MessageReceiver {
  public:
    explicit Screen(MessageReceiver& session) : session_(session) {}

    void on_message(Connection& connection, const webkit_message& message) override {
        if (waiting_++ == 0) g_idle_add_full(kDrawingPriority, draw, this, nullptr);
        session_.on_message(connection, message);
    }
    void on_end(Connection& connection, std::string_view why) override {
        session_.on_end(connection, why);
    }

    std::size_t longest_wait() const { return longest_wait_; }  // in messages

  private:
    static gboolean draw(void* data) {
        auto* self = static_cast<Screen*>(data);
        self->longest_wait_ = std::max(self->longest_wait_, self->waiting_);
        self->waiting_ = 0;
        return G_SOURCE_REMOVE;
    }

    MessageReceiver& session_;
    std::size_t waiting_ = 0;
    std::size_t longest_wait_ = 0;
};

TEST(Burst, IsLoggedWithinLimitsTranscribedCompletelyAndDrawnMeanwhile) {
    const TemporaryDirectory directory;
    const std::string copy = directory.path() + "/transcript";
    const MessageLog::Limits limits;
    MessageLog log(limits);
    FakeServices fakes;
    std::ostream nowhere(nullptr);
    Transcript transcript(nowhere);
    ASSERT_TRUE(transcript.copy_to(copy));
    transcript.log_to(&log);
    Session session(fakes.services, "", transcript, nullptr,
                    {.load_page = [] {}, .check_over = [] {}});
    Screen screen(session);
    MessageServer server(directory.path() + "/socket", screen);
    FakeWebProcess web_process(directory.path() + "/socket");

    std::string burst;
    for (int i = 1; i <= kBurst; ++i) burst += message(i);
    web_process.write(burst);
    ASSERT_TRUE(run_main_loop_until([&] { return log.next_serial() > kBurst; }));
    run_main_loop_until_idle();

    ASSERT_EQ(log.rows().size(), limits.rows);
    EXPECT_EQ(items_text(*log.rows().back().record->frame), "\"message 100000\"");

    std::ifstream file(copy);
    int lines = 0;
    bool is_in_order = true;
    for (std::string line; std::getline(file, line);) {
        ++lines;
        is_in_order &= line.find("\"message " + std::to_string(lines) + "\"") != std::string::npos;
    }
    EXPECT_EQ(lines, kBurst);
    EXPECT_TRUE(is_in_order);

    EXPECT_GT(screen.longest_wait(), 0U);
    EXPECT_LE(screen.longest_wait(), kPiece / message(1).size() + 1);
}

}  // namespace
}  // namespace kestrel::testing
