// Script text as UTF-8: what JavaScriptCore's own conversion makes of it, at every length and
// place.
#include "jsapi/utf16_to_utf8.h"

#include <JavaScriptCore/JavaScript.h>
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "jsapi/script_text.h"

namespace kestrel::testing {
namespace {

using namespace std::string_view_literals;

constexpr char kUntouched = '\x5a';

std::string converted(std::u16string_view text) {
    std::string bytes(text.size() * kMaxBytesOfUnit + 1, kUntouched);
    const char* const end = write_utf8({text.data(), text.size()}, bytes.data());
    EXPECT_EQ(bytes.back(), kUntouched) << "wrote more than " << kMaxBytesOfUnit << " bytes a unit";
    bytes.resize(static_cast<std::size_t>(end - bytes.data()));
    EXPECT_EQ(utf8_size({text.data(), text.size()}), bytes.size());
    return bytes;
}

ScriptString script_string(std::u16string_view text) {
    return ScriptString(
        JSStringCreateWithCharacters(reinterpret_cast<const JSChar*>(text.data()), text.size()));
}

// What JavaScriptCore makes of a text, up to its first NUL.
std::string expected(std::u16string_view text) {
    const ScriptString string = script_string(text);
    std::string bytes(JSStringGetMaximumUTF8CStringSize(string.get()), '\0');
    JSStringGetUTF8CString(string.get(), bytes.data(), bytes.size());
    return bytes.c_str();
}

std::u16string repeated(std::u16string_view text, std::size_t count) {
    std::u16string all;
    while (count-- > 0) all += text;
    return all;
}

TEST(Utf16ToUtf8, IsRightForEveryUnit) {
    for (unsigned unit = 0; unit <= 0xffff; ++unit) {
        const std::u16string text(1, static_cast<char16_t>(unit));
        ASSERT_EQ(converted(text), expected(text)) << std::hex << unit;
    }
}

TEST(Utf16ToUtf8, IsRightForEverySurrogatePair) {
    for (unsigned high = 0xd800; high < 0xdc00; ++high) {
        std::u16string text;
        for (unsigned low = 0xdc00; low < 0xe000; ++low) {
            text += static_cast<char16_t>(high);
            text += static_cast<char16_t>(low);
        }
        ASSERT_EQ(converted(text).size(), 4U * 1'024) << std::hex << high;
        ASSERT_EQ(converted(text), expected(text)) << std::hex << high;
    }
}

TEST(Utf16ToUtf8, KnowsTheFirstAndLastCharacterOfEverySize) {
    EXPECT_EQ(converted(u"\x01\x7f"), "\x01\x7f");
    EXPECT_EQ(converted(u"\x80\u07ff"), "\xc2\x80\xdf\xbf");
    EXPECT_EQ(converted(u"\u0800\uffff"), "\xe0\xa0\x80\xef\xbf\xbf");
    EXPECT_EQ(converted(u"\U00010000\U0010ffff"), "\xf0\x90\x80\x80\xf4\x8f\xbf\xbf");
}

// Each is put at every place of texts of one to four blocks, and about the ends of long ones.
constexpr std::u16string_view kInserts[] = {
    u"",           u"\0"sv,     u"\x7f",           u"\x80",           u"\u20ac",
    u"\U0001f600", u"\xd800"sv, u"\xdc00"sv,       u"\xdc00\xd800"sv, u"\xd800\xd800\xdc00"sv,
    u"\xdbff"sv,   u"\xdfff"sv, u"\xd83d\x0041"sv, u"\0\xd800"sv,
};

TEST(Utf16ToUtf8, IsRightAtEveryPlaceOfABlock) {
    for (const std::u16string_view insert : kInserts) {
        for (std::size_t before = 0; before <= 2 * kUtf8Slack; ++before) {
            for (const std::size_t after : {0, 1, 31, 32, 33, 64, 255, 256, 257}) {
                const std::u16string text =
                    repeated(u"a", before) + std::u16string(insert) + repeated(u"z", after);
                ASSERT_EQ(converted(text), expected(text))
                    << ::testing::PrintToString(insert) << " behind " << before;
            }
        }
    }
}

TEST(Utf16ToUtf8, IsRightAtEveryAlignment) {
    const std::u16string text = repeated(u"plain ", 20) + u"\u20ac" + repeated(u"text ", 20);
    const std::string wanted = expected(text);
    for (std::size_t shift = 0; shift < 64; ++shift) {
        std::vector<char16_t> units(shift);
        units.insert(units.end(), text.begin(), text.end());
        std::vector<char> bytes(shift + text.size() * kMaxBytesOfUnit);
        const char* const end = write_utf8(std::span(units).subspan(shift), bytes.data() + shift);
        ASSERT_EQ(std::string_view(bytes.data() + shift, end), wanted) << shift;
    }
}

TEST(Utf16ToUtf8, NeedsNoMoreThanItsSizeAndTheSlack) {
    for (const std::size_t length : {0U, 40U, 255U, 256U, 257U, 512U}) {
        const std::u16string text = repeated(u"a", length) + u'\0' + repeated(u"b", 400);
        const std::size_t size = utf8_size(text);
        std::vector<char> bytes(size + kUtf8Slack + 1, kUntouched);
        EXPECT_EQ(write_utf8(text, bytes.data()), bytes.data() + length);
        EXPECT_EQ(bytes.back(), kUntouched) << length;
    }
}

// JavaScriptCore keeps texts of Latin-1 at one byte a character, others at two.
TEST(ScriptTextToUtf8, IsRightAtEveryLengthAndWidth) {
    for (const std::u16string_view character : {u"x"sv, u"\xe9"sv, u"\u0416"sv, u"\u20ac"sv}) {
        for (std::size_t length = 0; length <= 100; ++length) {
            const std::u16string text = repeated(character, length);
            const ScriptString string = script_string(text);
            std::string bytes(utf8_room(string.get()) + 1, kUntouched);
            bytes.resize(
                static_cast<std::size_t>(write_utf8(string.get(), bytes.data()) - bytes.data()));
            ASSERT_EQ(bytes, expected(text)) << length;
            ASSERT_EQ(utf8_size(string.get()), bytes.size()) << length;
        }
    }
}

TEST(ScriptTextToUtf8, CutsShortAndLongTextsAlike) {
    for (const std::size_t length : {0, 1, 7, 14, 15, 16, 17, 40}) {
        for (const std::u16string_view insert : kInserts) {
            const std::u16string text = repeated(u"a", length) + std::u16string(insert) + u"z";
            const ScriptString string = script_string(text);
            std::string bytes(utf8_room(string.get()) + 1, kUntouched);
            bytes.resize(
                static_cast<std::size_t>(write_utf8(string.get(), bytes.data()) - bytes.data()));
            ASSERT_EQ(bytes, expected(text)) << length;
        }
    }
}

}  // namespace
}  // namespace kestrel::testing
