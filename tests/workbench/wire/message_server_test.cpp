#include "workbench/wire/message_server.h"

#include <gmock/gmock.h>
#include <sys/resource.h>
#include <sys/socket.h>

#include <filesystem>
#include <list>
#include <optional>

#include "ipc/frame_builder.h"
#include "ipc/items.h"
#include "tests/support/frame_bytes.h"
#include "tests/support/listening_host.h"
#include "tests/support/main_loop.h"
#include "tests/support/process_state.h"
#include "tests/support/temporary_directory.h"
#include "tests/workbench/wire/fake_web_process.h"

namespace kestrel::testing {
namespace {

using ::testing::ElementsAre;

// Answers every message with the sender's process id.
class MessageServerTest : public ::testing::Test, public MessageReceiver {
  protected:
    const std::string& path() const { return path_; }
    void listen() { server.emplace(path(), *this); }

    // Sends a request and returns the answer.
    static std::string ask(FakeWebProcess& web_process) {
        web_process.write(frame_bytes(7, {}, {}));
        return web_process.read_frame();
    }

    std::vector<std::string> ends;
    std::optional<MessageServer> server;

  private:
    void on_message(Connection& connection, const webkit_message& message) override {
        if (message.msg_type == to_host("announce")) {
            Items items;
            decode_items(message, items);
            connection.set_pid(items.ints.at(0));
        } else {
            connection.send(build_frame(0, std::array{connection.pid()}, {}));
        }
    }
    void on_end(Connection& connection, std::string_view why) override {
        ends.push_back(std::to_string(connection.pid()) + " " + std::string(why));
    }

    TemporaryDirectory directory_;
    std::string path_ = directory_.path() + "/socket";
};

TEST_F(MessageServerTest, ServesTwoWebProcesses) {
    listen();
    FakeWebProcess first(path());
    FakeWebProcess second(path());
    first.announce(11);
    second.announce(22);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(ask(first), frame_bytes(0, {"11"}, {}));
        EXPECT_EQ(ask(second), frame_bytes(0, {"22"}, {}));
    }
    EXPECT_TRUE(first.is_quiet());
    EXPECT_TRUE(second.is_quiet());
}

TEST_F(MessageServerTest, KeepsOtherConnectionsWhenOneIsFaulty) {
    listen();
    FakeWebProcess good(path());
    good.announce(11);
    FakeWebProcess bad(path());
    bad.announce(22);
    FakeWebProcess silent(path());
    bad.write(header_bytes(5, 9, 9, 2));
    EXPECT_TRUE(bad.sees_end());
    EXPECT_THAT(ends, ElementsAre("22 sent item counts that its payload cannot hold"));
    EXPECT_EQ(ask(good), frame_bytes(0, {"11"}, {}));
    silent.announce(33);
    EXPECT_EQ(ask(silent), frame_bytes(0, {"33"}, {}));
}

// It stops in the middle of a frame and does not read.
TEST_F(MessageServerTest, KeepsOtherConnectionsWhenOneStalls) {
    listen();
    FakeWebProcess stalled(path());
    std::string requests;
    for (int i = 0; i < 10'000; ++i) requests += frame_bytes(7, {}, {});
    stalled.write(requests + frame_bytes(5, {}, {"abc"}).substr(0, 17));
    FakeWebProcess good(path());
    good.announce(11);
    EXPECT_EQ(ask(good), frame_bytes(0, {"11"}, {}));
}

TEST_F(MessageServerTest, HasConnectionsUntilTheyEnd) {
    listen();
    EXPECT_FALSE(server->has_connections());
    FakeWebProcess web_process(path());
    EXPECT_TRUE(run_main_loop_until([this] { return server->has_connections(); }));
    web_process.hang_up();
    EXPECT_TRUE(run_main_loop_until([this] { return !server->has_connections(); }));
    EXPECT_THAT(ends, ElementsAre("0 closed"));
}

TEST_F(MessageServerTest, LimitsConnectionsToSixtyFour) {
    listen();
    std::vector<FakeWebProcess> web_processes;
    web_processes.reserve(65);
    for (int i = 0; i < 65; ++i) web_processes.emplace_back(path());
    EXPECT_TRUE(web_processes.back().sees_end());
    EXPECT_EQ(ask(web_processes[63]), frame_bytes(0, {"0"}, {}));
}

TEST_F(MessageServerTest, RemovesItsSocket) {
    run_main_loop_until_idle();  // lets the main loop open its descriptors
    const std::size_t before = open_descriptors();
    listen();
    FakeWebProcess web_process(path());
    run_main_loop_until([this] { return server->has_connections(); });
    server.reset();
    EXPECT_TRUE(web_process.sees_end());
    web_process.hang_up();
    EXPECT_EQ(open_descriptors(), before);
    EXPECT_FALSE(std::filesystem::exists(path()));
}

// Another host has created its socket after this one's was removed.
TEST_F(MessageServerTest, KeepsAFileThatReplacedItsSocket) {
    listen();
    const std::string own = path() + ".own";  // prevents the reuse of its inode
    std::filesystem::rename(path(), own);
    const ListeningHost another(path());
    server.reset();
    EXPECT_TRUE(std::filesystem::is_socket(path()));
}

TEST_F(MessageServerTest, SurvivesAThousandConnections) {
    rlimit limit{};
    getrlimit(RLIMIT_NOFILE, &limit);
    limit.rlim_cur = limit.rlim_max;
    setrlimit(RLIMIT_NOFILE, &limit);
    listen();
    FakeWebProcess first(path());
    first.announce(11);
    EXPECT_EQ(ask(first), frame_bytes(0, {"11"}, {}));
    const std::size_t before = open_descriptors();
    {
        std::list<FakeWebProcess> crowd;
        for (int i = 0; i < 1'000; ++i) {
            crowd.emplace_back(path());
            run_main_loop_until_idle();
        }
        // Connections beyond the limit are closed and use no descriptor.
        EXPECT_LE(open_descriptors(), before + 1'000 + 63);
        EXPECT_TRUE(crowd.back().sees_end());
        EXPECT_EQ(ask(first), frame_bytes(0, {"11"}, {}));
    }
    EXPECT_TRUE(run_main_loop_until([&] { return open_descriptors() == before; }));
    FakeWebProcess late(path());
    EXPECT_EQ(ask(late), frame_bytes(0, {"0"}, {}));
}

TEST_F(MessageServerTest, RefusesTheSocketOfARunningHost) {
    const ListeningHost living(path());
    EXPECT_THROW(listen(), AddressInUse);
    EXPECT_TRUE(std::filesystem::is_socket(path()));
}

}  // namespace
}  // namespace kestrel::testing
