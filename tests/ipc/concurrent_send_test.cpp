// Frames of several threads never tear each other.
#include <gtest/gtest.h>
#include <sys/socket.h>

#include <array>
#include <atomic>
#include <future>
#include <latch>
#include <string>
#include <thread>

#include "ipc/send.h"
#include "ipc/webkit_client.h"
#include "tests/support/link_peer.h"

namespace kestrel::testing {
namespace {

constexpr int kLargeFrames = 10;

void send_text(std::int32_t type, std::string_view text) { send(type, {}, std::array{text}); }

std::string read_to_the_end(const HostEnd& host) {
    constexpr std::size_t kPiece = 1'000'000;
    std::string stream;
    std::string piece;
    do {
        piece = host.read(kPiece);
        stream += piece;
    } while (piece.size() == kPiece);
    return stream;
}

TEST(ConcurrentSendTest, FramesOfTwoThreadsArriveWholeAndInEachThreadsOrder) {
    const LinkPeer host;
    const std::string large(1'000'000, 'x');
    std::latch start(2);
    std::atomic<bool> large_sent = false;
    int small_sent = 0;
    std::thread large_sender([&] {
        start.arrive_and_wait();
        for (int i = 0; i < kLargeFrames; ++i) send_text(19, large);
        large_sent = true;
    });
    std::thread small_sender([&] {
        start.arrive_and_wait();
        while (!large_sent) send_text(35, std::to_string(small_sent++));
    });
    std::future<std::string> arrived =
        std::async(std::launch::async, [&] { return read_to_the_end(host); });
    large_sender.join();
    small_sender.join();
    shutdown(webkit_client::server_fd, SHUT_WR);
    const std::string stream = arrived.get();

    const std::string large_frame = frame_bytes(19, {}, {large});
    std::string_view rest = stream;
    int large_frames = 0;
    int small_frames = 0;
    while (!rest.empty()) {
        const std::string small_frame = frame_bytes(35, {}, {std::to_string(small_frames)});
        const bool is_small = rest.starts_with(small_frame);
        ASSERT_TRUE(is_small || rest.starts_with(large_frame))
            << "torn after " << large_frames << " large frames and " << small_frames << " small";
        rest.remove_prefix(is_small ? small_frame.size() : large_frame.size());
        ++(is_small ? small_frames : large_frames);
    }
    EXPECT_EQ(large_frames, kLargeFrames);
    EXPECT_EQ(small_frames, small_sent);
}

}  // namespace
}  // namespace kestrel::testing
