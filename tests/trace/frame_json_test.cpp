#include "trace/frame_json.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <ctime>

#include "ipc/frame.h"
#include "ipc/frame_builder.h"
#include "tests/trace/json_object.h"
#include "trace/time_text.h"

namespace kestrel::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;

constexpr std::chrono::system_clock::time_point kTime{
    std::chrono::microseconds(1'795'266'239'000'021)};

std::string json_of(int type, std::span<const int> ints, std::span<const std::string_view> strings,
                    Direction direction = Direction::from_page) {
    return frame_json(kTime, direction, 42, *build_frame(type, ints, strings));
}

TEST(FrameJson, IsOneObjectWithOrderedFields) {
    EXPECT_EQ(json_of(21, std::array{255, -3}, std::array<std::string_view, 2>{"a", ""}),
              R"({"time":"2026-11-21T13:03:59.000021Z","pid":42,"direction":"to-host",)"
              R"("type":21,"name":"recolorImage","length":10,"ints":[255,-3],"strings":["a",""]})");
    EXPECT_EQ(json_of(34, {}, {}, Direction::to_page),
              R"({"time":"2026-11-21T13:03:59.000021Z","pid":42,"direction":"to-page",)"
              R"("type":34,"name":"resourcesAndUrl","length":0,"ints":[],"strings":[]})");
    EXPECT_EQ(json_of(1, {}, {}),
              R"({"time":"2026-11-21T13:03:59.000021Z","pid":42,"direction":"to-host",)"
              R"("type":1,"name":null,"length":0,"ints":[],"strings":[]})");
}

TEST(FrameJson, EscapesText) {
    const std::array<std::string_view, 1> text{"\"\\/\n\x01\x1f\x7fGr\xc3\xbc\xc3\x9f"};
    const std::string json = json_of(5, {}, text);
    EXPECT_THAT(json, ::testing::HasSubstr(R"(["\"\\/\u000a\u0001\u001f)"
                                           "\x7fGr\xc3\xbc\xc3\x9f\"]"));
}

TEST(FrameJson, PreservesEveryByteOfEveryItem) {
    std::string all;
    for (int byte = 1; byte < 128; ++byte) all += static_cast<char>(byte);
    const std::string wild = all + "\xff\x80\xc3";
    const std::string valid = all + "\xc3\xbc\xe2\x80\xa8\xf0\x9f\x98\x80";
    const std::string large(100'000, '"');
    const std::array<std::string_view, 5> strings{all, wild, valid, "", large};
    const std::array ints{2147483647, -2147483647 - 1};
    const JsonObjectText json(json_of(11, ints, strings));
    EXPECT_THAT(json.integers("ints"), ElementsAreArray(ints));
    EXPECT_THAT(json.strings("strings"), ElementsAreArray(strings));
}

TEST(FrameJson, KeepsAnUndecodablePayload) {
    const Frame frame = build_frame(5, std::array{7}, std::array<std::string_view, 1>{"ab"});
    payload_begin(*frame)[4] = 'c';  // the last item's NUL
    const std::string text = frame_json(kTime, Direction::from_page, 42, *frame);
    const JsonObjectText json(text);
    EXPECT_FALSE(json.has("ints"));
    EXPECT_FALSE(json.has("strings"));
    EXPECT_EQ(json.integer("num_of_ints"), 1);
    EXPECT_EQ(json.integer("num_of_strings"), 1);
    EXPECT_EQ(json.integer("length"), 5);
    EXPECT_EQ(json.bytes("payload"), std::string("7\0abc", 5));
}

TEST(FrameJson, TellsTheNumberOfDroppedFrames) {
    EXPECT_EQ(dropped_json(kTime, 42, 3),
              R"({"time":"2026-11-21T13:03:59.000021Z","pid":42,"dropped":3})");
}

TEST(TimeText, LocalTimeUsesTheTimeZoneOfTheProcess) {
    setenv("TZ", "EAST-02:30", 1);
    tzset();
    EXPECT_EQ(local_time(kTime), "15:33:59.000021");
    EXPECT_EQ(utc_time(kTime), "2026-11-21T13:03:59.000021Z");
    unsetenv("TZ");
    tzset();
}

}  // namespace
}  // namespace kestrel::testing
