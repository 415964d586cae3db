// Sends that a host is there for, and those that are dropped.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstring>
#include <thread>

#include "ipc/frame.h"
#include "ipc/send.h"
#include "ipc/webkit_client.h"
#include "ipc/webkit_util.h"
#include "log/zynlog.h"
#include "tests/support/frame_bytes.h"
#include "tests/support/link_peer.h"
#include "tests/support/log_recorder.h"
#include "tests/support/process_state.h"
#include "tests/support/stderr_capture.h"

namespace kestrel::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class SendMessageTest : public ::testing::Test {
  protected:
    SendMessageTest() { clear_log(); }

    StderrCapture errors;
};

TEST_F(SendMessageTest, WritesToADescriptorThatIsNotASocket) {
    std::array<int, 2> ends{};
    ASSERT_EQ(pipe2(ends.data(), O_CLOEXEC), 0);
    webkit_client::server_fd = ends[1];
    send(6, {}, {});
    std::array<char, 17> read_back{};
    EXPECT_EQ(read(ends[0], read_back.data(), read_back.size()), 16);
    EXPECT_EQ(std::string(read_back.data(), 16), frame_bytes(6, {}, {}));
    webkit_client::server_fd = -1;
    close(ends[0]);
    close(ends[1]);
}

TEST_F(SendMessageTest, WritesTheFrameWithoutTakingOwnership) {
    const LinkPeer host;
    const Frame frame(webkit_util::wrapMessage(9, {12, -3}, {"ab", ""}));
    webkit_message* message = frame.get();
    webkit_client::sendMessage(message);
    webkit_client::sendMessage(message);
    EXPECT_EQ(message, frame.get());
    EXPECT_EQ(host.read_frame(), frame_bytes(9, {"12", "-3"}, {"ab", ""}));
    EXPECT_EQ(host.read_frame(), frame_bytes(9, {"12", "-3"}, {"ab", ""}));
    EXPECT_TRUE(host.is_quiet());
    EXPECT_THAT(logged(), IsEmpty());
}

TEST_F(SendMessageTest, WritesAHeaderBuiltByHand) {
    const LinkPeer host;
    webkit_message header{6, 0, 0, 0};
    webkit_message* message = &header;
    webkit_client::sendMessage(message);
    EXPECT_EQ(host.read_frame(), header_bytes(6, 0, 0, 0));
    EXPECT_TRUE(host.is_quiet());
}

TEST_F(SendMessageTest, BuildsAndSendsInOneStep) {
    const LinkPeer host;
    send(35, {}, std::array<std::string_view, 1>{"https://store.example/"});
    send(61, std::array{4242}, {});
    EXPECT_EQ(host.read_frame(), frame_bytes(35, {}, {"https://store.example/"}));
    EXPECT_EQ(host.read_frame(), frame_bytes(61, {"4242"}, {}));
    EXPECT_TRUE(host.is_quiet());
}

TEST_F(SendMessageTest, WritesAFrameFarLargerThanTheSocketBuffer) {
    const LinkPeer host;
    std::string text;
    while (text.size() < 20'000'000) text += std::to_string(text.size()) + ' ';
    std::thread sender([&] { send(19, {}, std::array<std::string_view, 1>{text}); });
    EXPECT_TRUE(host.read_frame() == frame_bytes(19, {}, {text}));
    sender.join();
    EXPECT_THAT(logged(), IsEmpty());
}

TEST_F(SendMessageTest, LeavesSignalHandlingUnchanged) {
    const LinkPeer host;
    struct sigaction before {};
    sigaction(SIGPIPE, nullptr, &before);
    sigset_t mask_before{};
    pthread_sigmask(SIG_SETMASK, nullptr, &mask_before);

    const std::string text(100'000, 'x');  // large enough that signals are held off meanwhile
    send(19, {}, std::array<std::string_view, 1>{text});
    send(6, {}, {});

    struct sigaction after {};
    sigaction(SIGPIPE, nullptr, &after);
    sigset_t mask_after{};
    pthread_sigmask(SIG_SETMASK, nullptr, &mask_after);
    EXPECT_EQ(after.sa_handler, before.sa_handler);
    for (int number = 1; number <= SIGRTMAX; ++number) {
        EXPECT_EQ(sigismember(&mask_after, number), sigismember(&mask_before, number)) << number;
    }
}

TEST_F(SendMessageTest, OpensNoDescriptor) {
    const LinkPeer host;
    const std::size_t before = open_descriptors();
    send(6, {}, {});
    EXPECT_EQ(open_descriptors(), before);
}

TEST_F(SendMessageTest, DropsTheMessageWithoutADescriptor) {
    ASSERT_EQ(webkit_client::server_fd, -1);
    send(6, {}, {});
    EXPECT_EQ(errors.text(), "webkit_client::sendMessage server_fd not initialized yet\n");
    EXPECT_THAT(logged(), ElementsAre(LogLine{kLogWebkit, kError,
                                              "server_fd not initialized yet, returning"}));
    EXPECT_EQ(webkit_client::server_fd, -1);
}

TEST_F(SendMessageTest, SendsNothingOfAnOversizeMessage) {
    const LinkPeer host;
    constexpr std::size_t kTooLong = 0x7ffff000;
    void* text =
        mmap(nullptr, kTooLong, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    send(19, {}, std::array{std::string_view(static_cast<const char*>(text), kTooLong)});
    munmap(text, kTooLong);
    EXPECT_TRUE(host.is_quiet());
    EXPECT_EQ(errors.text(), "webkit_util::wrapMessage message is too long, not sent\n");
}

TEST_F(SendMessageTest, IgnoresARefusedMessage) {
    const LinkPeer host;
    webkit_message* message = nullptr;
    webkit_client::sendMessage(message);
    EXPECT_TRUE(host.is_quiet());
    EXPECT_EQ(errors.text(), "");
}

}  // namespace
}  // namespace kestrel::testing
