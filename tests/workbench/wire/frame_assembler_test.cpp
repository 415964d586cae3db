#include "ipc/frame_assembler.h"

#include <gmock/gmock.h>

#include <climits>
#include <string>
#include <vector>

#include "tests/support/frame_bytes.h"

namespace kestrel::testing {
namespace {

constexpr FrameLimits kLimits{.payload = 1'000, .items = 8};

// All frames of `stream`, read in pieces of `size` bytes.
std::vector<std::string> frames_in_pieces_of(std::size_t size, std::string_view stream) {
    FrameAssembler assembler(kLimits);
    std::vector<std::string> frames;
    while (!stream.empty()) {
        std::span<const char> piece = stream.substr(0, size);
        stream.remove_prefix(piece.size());
        while (const Frame frame = assembler.next(piece)) frames.push_back(bytes_text(*frame));
        EXPECT_TRUE(piece.empty());
    }
    EXPECT_EQ(assembler.fault(), "");
    EXPECT_FALSE(assembler.is_inside_frame());
    return frames;
}

// The fault that a header at the start of a stream causes, or "".
std::string fault_of(const std::string& header) {
    FrameAssembler assembler(kLimits);
    std::span<const char> bytes = header;
    EXPECT_EQ(assembler.next(bytes), nullptr);
    return std::string(assembler.fault());
}

TEST(FrameAssembler, YieldsTheSameFramesForAnySplit) {
    const std::vector<std::string> frames = {frame_bytes(61, {"4242"}, {}), frame_bytes(6, {}, {}),
                                             frame_bytes(9, {"12", "-3"}, {"ab", ""}),
                                             frame_bytes(19, {}, {std::string(900, 'x'), "y"}),
                                             frame_bytes(7, {}, {})};
    std::string stream;
    for (const std::string& frame : frames) stream += frame;
    for (std::size_t size = 1; size <= stream.size(); ++size) {
        ASSERT_EQ(frames_in_pieces_of(size, stream), frames) << size;
    }
}

TEST(FrameAssembler, ReportsWhetherAFrameIsIncomplete) {
    const std::string frame = frame_bytes(5, {}, {"abc"});
    for (std::size_t taken = 0; taken < frame.size(); ++taken) {
        FrameAssembler assembler(kLimits);
        std::span<const char> bytes(frame.data(), taken);
        EXPECT_EQ(assembler.next(bytes), nullptr);
        EXPECT_EQ(assembler.is_inside_frame(), taken > 0) << taken;
    }
}

TEST(FrameAssembler, AcceptsPayloadsUpToTheLimit) {
    EXPECT_EQ(fault_of(header_bytes(5, 0, 1, 1'000)), "");
    EXPECT_EQ(fault_of(header_bytes(5, 0, 1, 1'001)), "a payload over the limit");
    EXPECT_EQ(fault_of(header_bytes(5, 0, 1, INT_MAX)), "a payload over the limit");
}

TEST(FrameAssembler, AcceptsItemsUpToTheLimit) {
    EXPECT_EQ(fault_of(header_bytes(5, 3, 5, 100)), "");
    EXPECT_EQ(fault_of(header_bytes(5, 3, 6, 100)), "too many items");
}

TEST(FrameAssembler, RejectsInvalidHeaders) {
    EXPECT_EQ(fault_of(header_bytes(5, 0, 0, -1)), "a payload length below zero");
    EXPECT_EQ(fault_of(header_bytes(5, 0, 0, INT_MIN)), "a payload length below zero");
    EXPECT_EQ(fault_of(header_bytes(5, 1, 0, 1)), "");
    constexpr const char* kCounts = "item counts that its payload cannot hold";
    EXPECT_EQ(fault_of(header_bytes(5, 1, 1, 1)), kCounts);
    EXPECT_EQ(fault_of(header_bytes(5, -1, 0, 1)), kCounts);
    EXPECT_EQ(fault_of(header_bytes(5, 0, -1, 1)), kCounts);
    EXPECT_EQ(fault_of(header_bytes(5, INT_MAX, INT_MAX, 1)), kCounts);
}

TEST(FrameAssembler, ReturnsNothingAfterAFault) {
    FrameAssembler assembler(kLimits);
    const std::string stream = header_bytes(5, 0, 0, -1) + frame_bytes(6, {}, {});
    std::span<const char> bytes = stream;
    EXPECT_EQ(assembler.next(bytes), nullptr);
    EXPECT_EQ(bytes.size(), 16U);
    EXPECT_EQ(assembler.next(bytes), nullptr);
    EXPECT_EQ(bytes.size(), 16U);
    EXPECT_EQ(assembler.fault(), "a payload length below zero");
}

}  // namespace
}  // namespace kestrel::testing
