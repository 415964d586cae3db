#include "base/terminal_text.h"

#include <gtest/gtest.h>

namespace kestrel::testing {
namespace {

std::string quoted_line(std::string_view text) { return quoted(text, 80); }

TEST(QuotedText, EscapesUnprintableCharacters) {
    EXPECT_EQ(quoted_line("a\n\r\t\"\\b"), R"("a\n\r\t\"\\b")");
    EXPECT_EQ(quoted_line("\x01\x1b[31m\x1f\x7f"), R"("\u{1}\u{1b}[31m\u{1f}\u{7f}")");
    EXPECT_EQ(quoted_line("\xc2\x80\xc2\x9f"), R"("\u{80}\u{9f}")");
    EXPECT_EQ(quoted_line("\xe2\x80\x8b\xe2\x80\xae\xef\xbb\xbf"), R"("\u{200b}\u{202e}\u{feff}")");
    EXPECT_EQ(quoted_line("\xe2\x80\xa8\xe2\x80\xa9"), R"("\u{2028}\u{2029}")");
    EXPECT_EQ(quoted_line("\xf3\xa0\x81\x81"), R"("\u{e0041}")");
}

TEST(QuotedText, ShowsPrintableTextUnchanged) {
    const std::string text = " ~'\xc2\xa0Gr\xc3\xbc\xc3\x9f\xe2\x82\xac\xf0\x9f\x98\x80";
    EXPECT_EQ(quoted_line(text), '"' + text + '"');
}

TEST(QuotedText, ShowsInvalidUtf8AsHex) {
    EXPECT_EQ(quoted_line("a\xff\xc3"), R"("a\xff\xc3")");
    EXPECT_EQ(quoted_line("\xc3("), R"("\xc3(")");
}

TEST(QuotedText, ShortensLongTextsBetweenCharacters) {
    EXPECT_EQ(quoted_line(std::string(80, 'x')), '"' + std::string(80, 'x') + '"');
    EXPECT_EQ(quoted_line(std::string(81, 'x')), '"' + std::string(80, 'x') + "\"... 1 more bytes");
    EXPECT_EQ(quoted_line(std::string(79, 'x') + "\xc3\xbc\xc3\xbc"),
              '"' + std::string(79, 'x') + "\xc3\xbc\"... 2 more bytes");
}

TEST(PrintableText, EscapesControlCharactersAsHex) {
    EXPECT_EQ(printable("a\n\r\t\x1b[31m\x7f"), R"(a\n\x0d\t\x1b[31m\x7f)");
    EXPECT_EQ(printable("\xc2\x9b"), R"(\xc2\x9b)");
}

TEST(PrintableText, EscapesCharactersThatChangeTheDirectionOfWriting) {
    EXPECT_EQ(printable("\xe2\x80\xae\xe2\x81\xa6\xd8\x9c"), R"(\u{202e}\u{2066}\u{61c})");
}

TEST(PrintableText, ShowsInvalidUtf8AsHex) { EXPECT_EQ(printable("\xff\xc3"), R"(\xff\xc3)"); }

TEST(PrintableText, LeavesQuotesAndBackslashes) { EXPECT_EQ(printable(R"("\)"), R"("\)"); }

}  // namespace
}  // namespace kestrel::testing
