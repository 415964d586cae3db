#include "workbench/wire/composed_message.h"

#include <gmock/gmock.h>

#include <array>

#include "tests/support/frame_bytes.h"

namespace kestrel::testing {
namespace {

using ::testing::IsNull;

std::string bytes(const ComposedMessage& message) {
    EXPECT_EQ(message.problem, "");
    return bytes_text(*message.frame);
}

TEST(ComposedMessage, BuildsEachKindOfFrame) {
    EXPECT_EQ(bytes(compose_script("a();\nb();")), frame_bytes(0, {}, {"a();\nb();"}));
    EXPECT_EQ(bytes(compose_answer("take", {})), frame_bytes(1, {}, {"take"}));
    EXPECT_EQ(bytes(compose_answer("take", std::array<std::string_view, 3>{"1", "", "3"})),
              frame_bytes(1, {}, {"take", "1", "", "3"}));
    EXPECT_EQ(bytes(compose_page("file:///a", "{}")), frame_bytes(34, {}, {"file:///a", "{}"}));
}

TEST(ComposedMessage, RefusesMoreThanTheExtensionAccepts) {
    const std::string longest(4'999'999, 'x');
    EXPECT_EQ(compose_script(longest).frame->total_len_of_string, 5'000'000);
    const ComposedMessage refused = compose_script(longest + "x");
    EXPECT_THAT(refused.frame, IsNull());
    EXPECT_EQ(
        refused.problem,
        "This message has 5000001 bytes; the extension accepts at most 5000000, so it was not "
        "sent.");
}

TEST(ComposedMessage, RequiresTheFirstText) {
    EXPECT_EQ(compose_answer("", {}).problem, "An answer needs a callback expression.");
    EXPECT_EQ(compose_page("", "{}").problem, "A page needs a URL.");
    EXPECT_EQ(compose_script(std::string_view("a\0b", 3)).problem,
              "A string item cannot hold a NUL character.");
}

}  // namespace
}  // namespace kestrel::testing
