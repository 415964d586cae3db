#include "workbench/wire/connection.h"

#include <gmock/gmock.h>

#include <csignal>
#include <memory>

#include "ipc/frame_builder.h"
#include "tests/support/frame_bytes.h"
#include "tests/support/main_loop.h"
#include "tests/workbench/wire/fake_web_process.h"

namespace kestrel::testing {
namespace {

using ::testing::ElementsAre;

class ConnectionTest : public ::testing::Test, public MessageReceiver {
  protected:
    ConnectionTest() : ConnectionTest(socket_pair()) {}

    // The reason why the connection ended.
    std::string wait_for_end() {
        run_main_loop_until([this] { return connection == nullptr; });
        return end;
    }

    std::vector<std::string> received;
    std::string end = "it has not ended";
    std::unique_ptr<Connection> connection;
    FakeWebProcess web_process;

  private:
    explicit ConnectionTest(std::pair<FileDescriptor, FileDescriptor> ends)
        : connection(std::make_unique<Connection>(std::move(ends.first), *this)),
          web_process(std::move(ends.second)) {}

    void on_message(Connection& /*connection*/, const webkit_message& message) override {
        received.push_back(bytes_text(message));
    }
    void on_end(Connection& /*connection*/, std::string_view why) override {
        end = why;
        connection.reset();
    }
};

TEST_F(ConnectionTest, ReceivesMessagesInOrder) {
    const std::string first = frame_bytes(19, {}, {"key", std::string(1'000'000, 'x'), "f"});
    const std::string second = frame_bytes(7, {}, {});
    web_process.write(first + second);
    run_main_loop_until([this] { return received.size() == 2; });
    EXPECT_THAT(received, ElementsAre(first, second));
}

// The messages are much longer than the socket's buffer.
TEST_F(ConnectionTest, SendsMessagesInOrderWithoutBlocking) {
    const std::string long_text(3'000'000, 'x');
    connection->send(build_frame(1, {}, std::array<std::string_view, 1>{long_text}));
    connection->send(build_frame(0, {}, std::array<std::string_view, 1>{"a"}));
    EXPECT_EQ(web_process.read_frame(), frame_bytes(1, {}, {long_text}));
    EXPECT_EQ(web_process.read_frame(), frame_bytes(0, {}, {"a"}));
    connection->send(build_frame(0, {}, std::array<std::string_view, 1>{"b"}));
    EXPECT_EQ(web_process.read_frame(), frame_bytes(0, {}, {"b"}));
    EXPECT_EQ(g_main_context_pending(nullptr),
              FALSE);  // no source waits for the socket to become writable
}

TEST_F(ConnectionTest, EndsWhenThePeerCloses) {
    web_process.hang_up();
    EXPECT_EQ(wait_for_end(), "closed");
}

TEST_F(ConnectionTest, ReportsAnEndWithinAMessage) {
    web_process.write(frame_bytes(5, {}, {"abc"}).substr(0, 19));
    web_process.hang_up();
    EXPECT_EQ(wait_for_end(), "closed in the middle of a message");
}

TEST_F(ConnectionTest, EndsAfterAnInvalidHeader) {
    web_process.write(frame_bytes(7, {}, {}) + header_bytes(5, 0, 1, -1));
    EXPECT_EQ(wait_for_end(), "sent a payload length below zero");
    EXPECT_THAT(received, ElementsAre(frame_bytes(7, {}, {})));
    EXPECT_TRUE(web_process.sees_end());
}

TEST_F(ConnectionTest, EndsAfterAPayloadOverTheLimit) {
    web_process.write(header_bytes(5, 0, 1, (64 << 20) + 1));
    EXPECT_EQ(wait_for_end(), "sent a payload over the limit");
}

// The default action of SIGPIPE would terminate this program.
TEST_F(ConnectionTest, IsSafeWhenThePeerClosesBeforeASend) {
    const auto inherited = std::signal(SIGPIPE, SIG_DFL);  // or set by a library
    web_process.hang_up();
    connection->send(build_frame(0, {}, std::array<std::string_view, 1>{"a"}));
    EXPECT_EQ(wait_for_end(), "Broken pipe");
    std::signal(SIGPIPE, inherited);
}

TEST_F(ConnectionTest, EndsWhenThePeerDoesNotReadItsAnswers) {
    const std::string long_text(4'000'000, 'x');
    for (int i = 0; i < 18; ++i) {
        connection->send(build_frame(1, {}, std::array<std::string_view, 1>{long_text}));
    }
    EXPECT_EQ(wait_for_end(), "does not read what it is sent");
}

TEST_F(ConnectionTest, SendsAnyAmountToAPeerThatReads) {
    const std::string long_text(4'000'000, 'x');
    for (int i = 0; i < 18; ++i) {
        connection->send(build_frame(1, {}, std::array<std::string_view, 1>{long_text}));
        ASSERT_EQ(web_process.read_frame().size(), 16 + long_text.size() + 1) << i;
    }
    EXPECT_EQ(end, "it has not ended");
}

}  // namespace
}  // namespace kestrel::testing
