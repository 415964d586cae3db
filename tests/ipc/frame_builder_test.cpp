#include "ipc/frame_builder.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "tests/support/frame_bytes.h"
#include "tests/support/stderr_capture.h"

namespace kestrel::testing {
namespace {

constexpr std::size_t kMostPayload = kMaxFrame - sizeof(webkit_message);

std::string finished(FrameBuilder& builder) {
    const Frame frame = builder.finish();
    const std::span<const char> bytes = bytes_of(*frame);
    return {bytes.begin(), bytes.end()};
}

TEST(FrameBuilder, AddsItemsInOrder) {
    FrameBuilder builder(9, 3 * kMaxIntItem + 10);
    ASSERT_TRUE(builder.is_open());
    builder.add(12);
    builder.add(std::numeric_limits<int>::min());
    builder.add(std::numeric_limits<int>::max());
    builder.add("ab");
    builder.add("");
    char* const text = builder.begin_string();
    text[0] = 'c';
    builder.end_string(text + 1);
    EXPECT_EQ(finished(builder),
              frame_bytes(9, {"12", "-2147483648", "2147483647"}, {"ab", "", "c"}));
}

TEST(FrameBuilder, LeavesOutRoomThatWasNotFilled) {
    FrameBuilder builder(19, 100'000);
    builder.add("ab");
    EXPECT_EQ(finished(builder), frame_bytes(19, {}, {"ab"}));
}

TEST(FrameBuilder, NeedsNoMoreRoomThanTheItemsTake) {
    FrameBuilder builder(9, 2 + 3);
    builder.add(7);
    builder.add("ab");
    EXPECT_EQ(finished(builder), frame_bytes(9, {"7"}, {"ab"}));
}

TEST(FrameBuilder, RefusesMoreThanOneWriteTakes) {
    const StderrCapture errors;
    EXPECT_FALSE(FrameBuilder(5, kMostPayload + 1).is_open());
    EXPECT_FALSE(FrameBuilder(5, std::numeric_limits<std::size_t>::max()).is_open());
    EXPECT_EQ(FrameBuilder(5, std::nullopt).finish(), nullptr);
    const std::string line = "webkit_util::wrapMessage message is too long, not sent\n";
    EXPECT_EQ(errors.text(), line + line + line);
}

}  // namespace
}  // namespace kestrel::testing
