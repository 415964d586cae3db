#include "trace/frame_text.h"

#include <gtest/gtest.h>

#include <array>

#include "ipc/frame.h"
#include "ipc/frame_builder.h"

namespace kestrel::testing {
namespace {

std::string text_of(int type, std::span<const int> ints,
                    std::initializer_list<std::string_view> strings,
                    Direction direction = Direction::from_page, int pid = 42) {
    return frame_text(direction, pid, *build_frame(type, ints, std::vector(strings)));
}

TEST(FrameText, ShowsDirectionProcessTypeNameAndItems) {
    EXPECT_EQ(text_of(19, {}, {"key", "value", ""}),
              "<-      42  19 setItem \"key\" \"value\" \"\"");
    EXPECT_EQ(text_of(21, std::array{255, -3, 0}, {"a", "b"}),
              "<-      42  21 recolorImage 255 -3 0 \"a\" \"b\"");
    EXPECT_EQ(text_of(1, {}, {"f"}, Direction::to_page, 1234567), "-> 1234567   1 answer \"f\"");
    EXPECT_EQ(text_of(33, {}, {}), "<-      42  33 answerDelivered");
    EXPECT_EQ(text_of(6, {}, {}, Direction::from_page, 0), "<-       ?   6 logoff");
}

TEST(FrameText, NamesATypeByItsDirection) {
    EXPECT_EQ(text_of(1, {}, {}, Direction::from_page), "<-      42   1 (unknown)");
    EXPECT_EQ(text_of(34, {}, {}, Direction::to_page), "->      42  34 resourcesAndUrl");
    EXPECT_EQ(text_of(-2147483647 - 1, {}, {}), "<-      42 -2147483648 (unknown)");
}

TEST(FrameText, ReportsItemsThatDoNotFit) {
    const Frame frame = build_frame(5, {}, std::array<std::string_view, 1>{"ab"});
    payload_begin(*frame)[2] = 'c';  // the item's NUL
    EXPECT_EQ(frame_text(Direction::from_page, 42, *frame),
              "<-      42   5 sendAction (items do not fit the header)");
}

TEST(FrameText, ShowsSixteenItemsAndCountsTheRest) {
    const std::array ints{1, 2};
    std::string all = "<-      42   5 sendAction 1 2";
    for (int i = 0; i < 14; ++i) all += " \"x\"";
    const auto with_strings = [&](std::size_t count) {
        return frame_text(Direction::from_page, 42,
                          *build_frame(5, ints, std::vector<std::string_view>(count, "x")));
    };
    EXPECT_EQ(with_strings(14), all);
    EXPECT_EQ(with_strings(15), all + " ... 1 more items");
    EXPECT_EQ(with_strings(20), all + " ... 6 more items");
}

TEST(FrameText, FormatsNotesWithoutDirection) {
    EXPECT_EQ(note_text(42, "a note"), "--      42 a note");
}

}  // namespace
}  // namespace kestrel::testing
