// Frames as they are built, byte by byte.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/mman.h>

#include <array>
#include <climits>
#include <cstdint>
#include <utility>

#include "ipc/frame.h"
#include "ipc/frame_builder.h"
#include "ipc/webkit_util.h"
#include "tests/ipc/memory_limit.h"
#include "tests/support/frame_bytes.h"
#include "tests/support/stderr_capture.h"

namespace kestrel::testing {
namespace {

using ::testing::Optional;
using namespace std::string_literals;

constexpr std::size_t kMaxOutboundPayload = kMaxFrame - sizeof(webkit_message);

std::string wrapped(int type, const std::vector<int>& ints,
                    const std::vector<std::string>& strings) {
    const Frame frame(webkit_util::wrapMessage(type, ints, strings));
    const std::span<const char> bytes = bytes_of(*frame);
    return {bytes.begin(), bytes.end()};
}

// Text of a size that no test could afford to fill: reading any of it is a crash.
class UnreadableText {
  public:
    explicit UnreadableText(std::size_t size)
        : size_(size),
          start_(
              mmap(nullptr, size, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0)) {}
    ~UnreadableText() { munmap(start_, size_); }
    UnreadableText(const UnreadableText&) = delete;
    UnreadableText& operator=(const UnreadableText&) = delete;

    std::string_view view() const { return {static_cast<const char*>(start_), size_}; }

  private:
    std::size_t size_;
    void* start_;
};

TEST(WrapMessageTest, LaysOutTheAnnouncement) {
    EXPECT_EQ(wrapped(61, {4242}, {}),
              "\x3D\0\0\0"
              "\x01\0\0\0"
              "\0\0\0\0"
              "\x05\0\0\0"
              "\x34\x32\x34\x32\0"s);
}

TEST(WrapMessageTest, LaysOutIntegersBeforeStrings) {
    EXPECT_EQ(wrapped(9, {12, -3}, {"ab", ""}),
              "\x09\0\0\0"
              "\x02\0\0\0"
              "\x02\0\0\0"
              "\x0A\0\0\0"
              "\x31\x32\0"
              "\x2D\x33\0"
              "\x61\x62\0"
              "\0"s);
}

TEST(WrapMessageTest, WithoutItemsIsOnlyTheHeader) {
    EXPECT_EQ(wrapped(6, {}, {}), "\x06"s + std::string(15, '\0'));
}

TEST(WrapMessageTest, WritesIntegersAsTheirShortestDecimalText) {
    EXPECT_EQ(wrapped(5, {INT_MIN, INT_MAX, 0, -1, 7}, {}),
              frame_bytes(5, {"-2147483648", "2147483647", "0", "-1", "7"}, {}));
    EXPECT_EQ(wrapped(5, {INT_MIN}, {}).size(), 16 + 12);
}

TEST(WrapMessageTest, CutsAStringAtItsFirstNul) {
    EXPECT_EQ(wrapped(5, {}, {"a\0b"s}),
              "\x05\0\0\0"
              "\0\0\0\0"
              "\x01\0\0\0"
              "\x02\0\0\0"
              "\x61\0"s);
    EXPECT_EQ(wrapped(5, {}, {"\0b"s, "c"}), frame_bytes(5, {}, {"", "c"}));
}

TEST(WrapMessageTest, AllocatesNothingForTextBehindANul) {
    if (!kMemoryCanRunOut) GTEST_SKIP() << "the sanitizer's allocator does not fail";
    std::vector<std::string> strings = {"a"};
    strings.front().resize(100'000'000);
    Frame frame;
    {
        const MemoryLimit limit;
        frame.reset(webkit_util::wrapMessage(5, {-7}, std::move(strings)));
    }
    ASSERT_NE(frame, nullptr);
    EXPECT_EQ(frame->total_len_of_string, 3 + 2);
}

TEST(WrapMessageTest, KeepsRawBytes) {
    const std::string raw = "\xC3\xA9 \"quoted\" \\ \n\r\t\x01\xFF";
    EXPECT_EQ(wrapped(5, {}, {raw}), frame_bytes(5, {}, {raw}));
}

TEST(WrapMessageTest, CountsEveryItem) {
    const std::string bytes = wrapped(5, std::vector(1'000, 42), std::vector(2'000, "x"s));
    EXPECT_EQ(bytes.substr(0, 16), header_bytes(5, 1'000, 2'000, 3'000 + 4'000));
    EXPECT_EQ(bytes.size(), 16 + 7'000);
    EXPECT_EQ(bytes.substr(16 + 2'997, 5), "42\0x\0"s);
}

TEST(WrapMessageTest, AllowsMoreThanTheHostMaySend) {
    const std::string text(8'000'000, 'x');
    EXPECT_EQ(wrapped(19, {}, {text}), frame_bytes(19, {}, {text}));
}

std::optional<std::size_t> payload_length(std::span<const std::size_t> text_lengths) {
    PayloadLength length;
    for (const std::size_t text_length : text_lengths) length.add(text_length);
    return length.total();
}

TEST(PayloadLengthTest, CountsOneNulPerItem) {
    EXPECT_THAT(payload_length({}), Optional(0U));
    EXPECT_THAT(payload_length(std::to_array<std::size_t>({0})), Optional(1U));
    EXPECT_THAT(payload_length(std::to_array<std::size_t>({2, 2, 2, 0})), Optional(10U));
}

TEST(PayloadLengthTest, AllowsTheLongestWriteAndNotAByteMore) {
    constexpr std::size_t kLongest = kMaxOutboundPayload - 1;
    EXPECT_THAT(payload_length(std::array{kLongest}), Optional(0x7fffeff0U));
    EXPECT_EQ(payload_length(std::array{kLongest + 1}), std::nullopt);
    EXPECT_THAT(payload_length(std::array{kLongest - 1, std::size_t{0}}), Optional(0x7fffeff0U));
    EXPECT_EQ(payload_length(std::array{kLongest, std::size_t{0}}), std::nullopt);
}

TEST(PayloadLengthTest, RefusesSumsThatWouldOverflow) {
    EXPECT_EQ(payload_length(std::array{SIZE_MAX}), std::nullopt);
    EXPECT_EQ(payload_length(std::array{std::size_t{5}, SIZE_MAX}), std::nullopt);
    EXPECT_EQ(payload_length(std::array{std::size_t{5}, SIZE_MAX - 5}), std::nullopt);
    EXPECT_EQ(payload_length(std::vector<std::size_t>(5, 0x40000000)), std::nullopt);
}

TEST(BuildFrameTest, RefusesAMessageThatIsTooLongUnread) {
    const UnreadableText text(kMaxOutboundPayload);
    const StderrCapture errors;
    EXPECT_EQ(build_frame(19, {}, std::array{text.view()}), nullptr);
    EXPECT_EQ(errors.text(), "webkit_util::wrapMessage message is too long, not sent\n");
}

TEST(BuildFrameTest, RefusesItemsWhoseSumIsTooLong) {
    const UnreadableText text(kMaxOutboundPayload - 2);
    const StderrCapture errors;
    EXPECT_EQ(build_frame(19, std::array{7}, std::array{text.view()}), nullptr);
    EXPECT_EQ(errors.text(), "webkit_util::wrapMessage message is too long, not sent\n");
}

TEST(BuildFrameTest, ReportsOutOfMemory) {
    if (!kMemoryCanRunOut) GTEST_SKIP() << "the sanitizer's allocator does not fail";
    const UnreadableText text(1'000'000'000);
    const StderrCapture errors;
    Frame frame;
    {
        const MemoryLimit limit;
        frame = build_frame(19, {}, std::array{text.view()});
    }
    EXPECT_EQ(frame, nullptr);
    EXPECT_EQ(errors.text(), "webkit_util::wrapMessage could not malloc, message not sent\n");
}

}  // namespace
}  // namespace kestrel::testing
