// Frames that are made in place.
#include "ipc/outgoing_frame.h"

#include <gtest/gtest.h>

#include <future>
#include <limits>
#include <string>

#include "tests/support/link_peer.h"
#include "tests/support/stderr_capture.h"

namespace kestrel::testing {
namespace {

constexpr std::size_t kMostPayload = kMaxFrame - sizeof(webkit_message);

std::string text_of(std::size_t size) { return std::string(size, 'x'); }

void send_text(const std::string& text, std::size_t room) {
    OutgoingFrame frame(19, room);
    ASSERT_TRUE(frame.is_open());
    frame.add(text);
    frame.send();
}

TEST(OutgoingFrameTest, SendsItsItemsInOrder) {
    LinkPeer host;
    OutgoingFrame frame(9, 3 * kMaxIntItem + 10);
    ASSERT_TRUE(frame.is_open());
    frame.add(12);
    frame.add(std::numeric_limits<int>::min());
    frame.add(std::numeric_limits<int>::max());
    frame.add("ab");
    frame.add("");
    char* const text = frame.begin_string();
    text[0] = 'c';
    frame.end_string(text + 1);
    frame.send();
    EXPECT_EQ(host.read_frame(),
              frame_bytes(9, {"12", "-2147483648", "2147483647"}, {"ab", "", "c"}));
    EXPECT_TRUE(host.is_quiet());
}

TEST(OutgoingFrameTest, SendsNoMoreOfItsRoomThanItHasFilled) {
    LinkPeer host;
    send_text("ab", 100'000);
    EXPECT_EQ(host.read_frame(), frame_bytes(19, {}, {"ab"}));
    EXPECT_TRUE(host.is_quiet());
}

TEST(OutgoingFrameTest, IsWholeInEachKindOfBlock) {
    LinkPeer host;
    for (const std::size_t size :
         {0UL, 100UL, 494UL, 495UL, 496UL, 497UL, 4'096UL, OutgoingFrame::kCheapPayload - 1,
          OutgoingFrame::kCheapPayload, OutgoingFrame::kCheapPayload * 2, 100UL}) {
        const std::string expected = frame_bytes(19, {}, {text_of(size)});
        std::future<std::string> received =
            std::async(std::launch::async, [&] { return host.read(expected.size()); });
        send_text(text_of(size), size + 1);
        EXPECT_TRUE(received.get() == expected) << size;
    }
    EXPECT_TRUE(host.is_quiet());
}

TEST(OutgoingFrameTest, HasABlockOfItsOwnBesideAnother) {
    LinkPeer host;
    OutgoingFrame outer(5, 100'000);
    outer.add("outer");
    send_text("inner", 100'000);
    outer.send();
    EXPECT_EQ(host.read_frame(), frame_bytes(19, {}, {"inner"}));
    EXPECT_EQ(host.read_frame(), frame_bytes(5, {}, {"outer"}));
}

TEST(OutgoingFrameTest, RefusesMoreThanOneWriteTakes) {
    const StderrCapture errors;
    EXPECT_FALSE(OutgoingFrame(5, kMostPayload + 1).is_open());
    EXPECT_FALSE(OutgoingFrame(5, std::numeric_limits<std::size_t>::max()).is_open());
    EXPECT_EQ(errors.text(),
              "webkit_util::wrapMessage message is too long, not sent\n"
              "webkit_util::wrapMessage message is too long, not sent\n");
}

}  // namespace
}  // namespace kestrel::testing
