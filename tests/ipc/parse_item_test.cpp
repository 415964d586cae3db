// The exported parsers, which work through a scratch buffer of the caller's.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstdio>
#include <utility>

#include "ipc/items.h"
#include "ipc/webkit_util.h"

namespace kestrel::testing {
namespace {

using namespace std::string_literals;

constexpr std::size_t kScratchSize = 5'000'000;

class ParseItemTest : public ::testing::Test {
  protected:
    int parse_int(std::string payload) {
        return webkit_util::parseNextInt(position, payload.data(), scratch);
    }
    std::string parse_string(std::string payload) {
        return webkit_util::parseNextString(position, payload.data(), scratch);
    }

    // Whether the scratch buffer holds the text and nothing but zeros behind it.
    bool scratch_is(std::string_view text) const {
        return std::string_view(buffer.data(), text.size()) == text &&
               std::all_of(buffer.begin() + static_cast<std::ptrdiff_t>(text.size()), buffer.end(),
                           [](char c) { return c == '\0'; });
    }

    std::vector<char> buffer = std::vector<char>(kScratchSize, 'x');
    char* scratch = buffer.data();
    int position = 0;
};

TEST_F(ParseItemTest, ReadsAPayloadItemByItem) {
    const std::string payload = "12\0-3\0ab\0\0"s;
    EXPECT_EQ(parse_int(payload), 12);
    EXPECT_EQ(position, 3);
    EXPECT_EQ(parse_int(payload), -3);
    EXPECT_EQ(position, 6);
    EXPECT_EQ(parse_string(payload), "ab");
    EXPECT_EQ(position, 9);
    EXPECT_EQ(parse_string(payload), "");
    EXPECT_EQ(position, 10);
}

TEST_F(ParseItemTest, AnIntegerClearsTheWholeScratchBuffer) {
    EXPECT_EQ(parse_int("-2147483648"), INT_MIN);
    EXPECT_EQ(position, 12);
    EXPECT_TRUE(scratch_is("-2147483648"));
}

TEST_F(ParseItemTest, AStringClearsTheWholeScratchBuffer) {
    EXPECT_EQ(parse_string("a longer text"), "a longer text");
    EXPECT_TRUE(scratch_is("a longer text"));
    position = 0;
    EXPECT_EQ(parse_string("short"), "short");
    EXPECT_TRUE(scratch_is("short"));
}

TEST_F(ParseItemTest, AnEmptyItemCostsOneByte) {
    EXPECT_EQ(parse_string("\0next"s), "");
    EXPECT_EQ(position, 1);
    EXPECT_TRUE(scratch_is(""));
    position = 0;
    EXPECT_EQ(parse_int("\0"s
                        "7"),
              0);
    EXPECT_EQ(position, 1);
}

TEST_F(ParseItemTest, ReadsTextThatIsNotANumberAsZero) {
    EXPECT_EQ(parse_int("abc\0"s
                        "7"),
              0);
    EXPECT_EQ(position, 4);
    EXPECT_EQ(parse_int("abc\0"s
                        "7"),
              7);
}

TEST_F(ParseItemTest, ReadsTheLongestItemThatFits) {
    const std::string text(kScratchSize - 1, 'a');
    EXPECT_EQ(parse_string(text), text);
    EXPECT_EQ(position, 5'000'000);
    EXPECT_EQ(buffer.back(), '\0');
}

TEST_F(ParseItemTest, CutsALongerItemAndSkipsItWhole) {
    const std::string text(kScratchSize, 'a');
    EXPECT_EQ(parse_string(text + '\0' + "next"), text.substr(1));
    EXPECT_EQ(position, 5'000'001);
    EXPECT_EQ(buffer.back(), '\0');
    EXPECT_EQ(parse_string(text + '\0' + "next"), "next");
}

TEST(IntTextTest, ReadsNumbersAsScanfDoes) {
    const std::vector<std::pair<std::string_view, int>> cases = {{"0", 0},
                                                                 {"12", 12},
                                                                 {"-3", -3},
                                                                 {"+5", 5},
                                                                 {"007", 7},
                                                                 {"-0", 0},
                                                                 {" 7", 7},
                                                                 {"\t\n\v\f\r 7", 7},
                                                                 {"7 8", 7},
                                                                 {"12abc", 12},
                                                                 {"0x10", 0},
                                                                 {"1e3", 1},
                                                                 {"3.9", 3},
                                                                 {"2147483647", INT_MAX},
                                                                 {"-2147483648", INT_MIN}};
    for (const auto& [text, value] : cases) EXPECT_EQ(parse_int(text), value) << text;
}

TEST(IntTextTest, ReadsTextWithoutNumberAsZero) {
    for (const std::string_view text :
         {"", " ", "abc", "-", "+", "+-5", "-+5", "--5", "- 5", "+ 5"}) {
        EXPECT_EQ(parse_int(text), 0) << text;
    }
}

TEST(IntTextTest, CutsALongNumberAsScanfDoes) {
    for (const char* text : {"2147483648", "-2147483649", "4294967297", "99999999999",
                             "99999999999999999999", "-99999999999999999999"}) {
        int expected = 0;
        std::sscanf(text, "%d", &expected);  // NOLINT(cert-err34-c): what it does is the point
        EXPECT_EQ(parse_int(text), expected) << text;
    }
}

}  // namespace
}  // namespace kestrel::testing
