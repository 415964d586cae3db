// A signal on its way to the sender costs no frame and tears none.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <future>
#include <string>
#include <thread>

#include "ipc/send.h"
#include "ipc/webkit_client.h"
#include "tests/ipc/interruption.h"
#include "tests/support/link_peer.h"
#include "tests/support/log_recorder.h"
#include "tests/support/process_state.h"
#include "tests/support/wait_until.h"

namespace kestrel::testing {
namespace {

using ::testing::IsEmpty;

class InterruptedSendTest : public ::testing::Test {
  protected:
    InterruptedSendTest() { clear_log(); }

    // Starts the send, and returns once it waits for the host to read.
    std::thread start_sending(std::string_view text) {
        std::promise<pid_t> started;
        std::thread sender([&started, text] {
            started.set_value(gettid());
            send(19, {}, std::array{text});
        });
        const pid_t id = started.get_future().get();
        EXPECT_TRUE(wait_until([id] { return is_blocked_in(id, SYS_sendto); }));
        return sender;
    }

    LinkPeer host;
};

TEST_F(InterruptedSendTest, SendsALargeFrameWhole) {
    const std::string text(5'000'000, 'x');
    std::thread sender = start_sending(text);
    interrupt(sender.native_handle());
    EXPECT_TRUE(host.read_frame() == frame_bytes(19, {}, {text}));
    sender.join();
    EXPECT_THAT(logged(), IsEmpty());
}

TEST_F(InterruptedSendTest, RepeatsASmallFrame) {
    // Fills the socket, so that the next frame waits with none of its bytes taken.
    std::string filling;
    const std::string block(1'000, 'f');
    while (::send(webkit_client::server_fd, block.data(), block.size(), MSG_DONTWAIT) > 0) {
        filling += block;
    }
    std::thread sender = start_sending("ab");
    const int before = interruptions();
    interrupt(sender.native_handle());
    EXPECT_TRUE(wait_until([before] { return interruptions() > before; }));
    EXPECT_TRUE(host.read(filling.size()) == filling);
    EXPECT_EQ(host.read_frame(), frame_bytes(19, {}, {"ab"}));
    sender.join();
    EXPECT_THAT(logged(), IsEmpty());
}

}  // namespace
}  // namespace kestrel::testing
