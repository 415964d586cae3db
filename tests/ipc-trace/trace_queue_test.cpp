#include "ipc/trace_queue.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <thread>

namespace kestrel::testing {
namespace {

constexpr std::chrono::milliseconds kLong{10'000};

// Room for `count` frames without items.
constexpr std::size_t room_for(std::size_t count) {
    return count * (sizeof(TracedFrame) + sizeof(webkit_message));
}

void put(TraceQueue& queue, std::int32_t type) {
    queue.put(Direction::from_page, *build_frame(type, {}, {}));
}

TEST(TraceQueue, GivesFramesBackInOrderWithTheirBytes) {
    TraceQueue queue(1'000);
    const Frame answer = build_frame(1, {}, std::array<std::string_view, 1>{"f"});
    put(queue, 6);
    queue.put(Direction::to_page, *answer);
    const TracedFrame first = queue.take();
    EXPECT_EQ(first.direction, Direction::from_page);
    EXPECT_EQ(first.frame->msg_type, 6);
    const TracedFrame second = queue.take();
    EXPECT_EQ(second.direction, Direction::to_page);
    const std::span<const char> bytes = bytes_of(*second.frame);
    EXPECT_TRUE(std::ranges::equal(bytes, bytes_of(*answer)));
    EXPECT_GE(second.time, first.time);
}

TEST(TraceQueue, TakesAsMuchAsItHasRoomForAndNotAByteMore) {
    TraceQueue exact(room_for(2));
    for (const int type : {1, 2, 3, 4}) put(exact, type);
    EXPECT_EQ(exact.take().frame->msg_type, 1);
    put(exact, 5);
    EXPECT_EQ(exact.take().frame->msg_type, 2);
    const TracedFrame after_the_gap = exact.take();
    EXPECT_EQ(after_the_gap.frame->msg_type, 5);
    EXPECT_EQ(after_the_gap.dropped, 2U);

    TraceQueue short_of_one(room_for(2) - 1);
    for (const int type : {1, 2}) put(short_of_one, type);
    EXPECT_EQ(short_of_one.take().dropped, 0U);
    const TracedFrame count = short_of_one.take();
    EXPECT_EQ(count.frame, nullptr);
    EXPECT_EQ(count.dropped, 1U);
}

TEST(TraceQueue, IsDoneWhenTheTakerHasDealtWithWhatItTook) {
    TraceQueue queue(1'000);
    put(queue, 6);
    EXPECT_FALSE(queue.wait_until_done(std::chrono::milliseconds(0)));
    queue.take();
    EXPECT_FALSE(queue.wait_until_done(std::chrono::milliseconds(0)));
    std::thread taker([&queue] { queue.take(); });
    EXPECT_TRUE(queue.wait_until_done(kLong));
    put(queue, 6);
    taker.join();
}

TEST(TraceQueue, AClosedOneIsDoneAndTakesNothing) {
    TraceQueue queue(1'000);
    put(queue, 6);
    queue.close();
    EXPECT_TRUE(queue.wait_until_done(std::chrono::milliseconds(0)));
    put(queue, 6);
    EXPECT_TRUE(queue.wait_until_done(std::chrono::milliseconds(0)));
}

}  // namespace
}  // namespace kestrel::testing
