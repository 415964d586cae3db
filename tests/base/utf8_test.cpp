#include "base/utf8.h"

#include <gtest/gtest.h>

namespace kestrel::testing {
namespace {

TEST(Utf8, DecodesTheLimitsOfEverySize) {
    const auto expect = [](std::string_view text, std::size_t size, char32_t code) {
        const Utf8Character character = first_utf8_character(text);
        EXPECT_EQ(character.size, size) << text;
        EXPECT_EQ(character.code, code) << text;
    };
    expect(std::string_view("\0x", 2), 1, 0);
    expect("\x7fx", 1, 0x7f);
    expect("\xc2\x80x", 2, 0x80);
    expect("\xdf\xbfx", 2, 0x7ff);
    expect("\xe0\xa0\x80x", 3, 0x800);
    expect("\xed\x9f\xbfx", 3, 0xd7ff);
    expect("\xee\x80\x80x", 3, 0xe000);
    expect("\xef\xbf\xbfx", 3, 0xffff);
    expect("\xf0\x90\x80\x80x", 4, 0x10000);
    expect("\xf4\x8f\xbf\xbfx", 4, 0x10ffff);
}

TEST(Utf8, RejectsInvalidBytes) {
    for (const std::string_view text :
         {"", "\x80", "\xbf", "\xff", "\xf8\x88\x80\x80\x80", "\xc2", "\xe2\x82", "\xf0\x9f\x98",
          "\xc2x", "\xe2\x82x", "\xc0\x80", "\xc1\xbf", "\xe0\x9f\xbf", "\xf0\x8f\xbf\xbf",
          "\xed\xa0\x80", "\xed\xbf\xbf", "\xf4\x90\x80\x80", "\xf7\xbf\xbf\xbf"}) {
        EXPECT_EQ(first_utf8_character(text).size, 0U) << text;
    }
}

TEST(Utf8, ValidatesTexts) {
    EXPECT_TRUE(is_utf8(""));
    EXPECT_TRUE(is_utf8("a\xc3\xbc\xe2\x82\xac\xf0\x9f\x98\x80z"));
    EXPECT_FALSE(is_utf8("a\xc3\xbc\xe2\x82"));
    EXPECT_FALSE(is_utf8("a\xffz"));
}

}  // namespace
}  // namespace kestrel::testing
