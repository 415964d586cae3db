// Script strings of UTF-8 texts, short and long.
#include <gtest/gtest.h>

#include <string>

#include "jsapi/script_text.h"

namespace kestrel::testing {
namespace {

constexpr std::size_t kLongest = 400;  // beyond where the way of making them changes

bool is_made_of(const std::string& text) {
    return JSStringIsEqualToUTF8CString(make_script_string(text.c_str()).get(), text.c_str());
}

TEST(ScriptString, EqualsItsTextAtEveryLength) {
    std::string text;
    while (text.size() < kLongest) {
        EXPECT_TRUE(is_made_of(text)) << text.size();
        text += static_cast<char>(1 + text.size() % 0x7f);
    }
}

TEST(ScriptString, EqualsItsTextWithNonAsciiAnywhere) {
    for (std::size_t position = 0; position < kLongest; ++position) {
        std::string text(kLongest, 'x');
        text.replace(position, 1, "\xC3\xA9");
        EXPECT_TRUE(is_made_of(text)) << position;
        text.replace(position, 2, "\xF0\x9F\x98\x80");
        EXPECT_TRUE(is_made_of(text)) << position;
    }
}

TEST(ScriptString, HasOneUnitPerAsciiCharacter) {
    const std::string text(kLongest, '~');
    EXPECT_EQ(JSStringGetLength(make_script_string(text.c_str()).get()), kLongest);
}

}  // namespace
}  // namespace kestrel::testing
