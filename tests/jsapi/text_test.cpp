// Script values in a string list.
#include <algorithm>
#include <future>
#include <string>
#include <string_view>
#include <vector>

#include "tests/jsapi/page_api.h"

namespace kestrel::testing {
namespace {

using namespace std::string_view_literals;

struct TextConversion {
    std::string_view name;
    std::string_view value;  // as script
    std::string_view sent;

    friend void PrintTo(const TextConversion& conversion, std::ostream* out) {
        *out << conversion.name;
    }
};

class Text : public PageApiWithHost, public ::testing::WithParamInterface<TextConversion> {
  protected:
    void send(std::string_view value) const {
        call("external.sendAction(" + std::string(value) + ")");
    }
};

TEST_P(Text, IsScriptsOwnConversion) {
    send(GetParam().value);
    EXPECT_EQ(host.read_frame(), frame_bytes(5, {}, {GetParam().sent}));
    EXPECT_EQ(errors.text(), "");
}

TEST_P(Text, IsTheSameWheneverTheValueComes) {
    call("for (let left = 12, value = " + std::string(GetParam().value) +
         "; left > 0; --left) external.sendAction(value)");
    for (int i = 0; i < 12; ++i) {
        EXPECT_EQ(host.read_frame(), frame_bytes(5, {}, {GetParam().sent}));
    }
}

constexpr TextConversion kTextConversions[] = {
    {"String", "'text'", "text"},
    {"EmptyString", "''", ""},
    {"StringObject", "new String('boxed')", "boxed"},
    {"Integer", "5", "5"},
    {"Fraction", "2.5", "2.5"},
    {"NegativeZero", "-0", "0"},
    {"NotANumber", "NaN", "NaN"},
    {"True", "true", "true"},
    {"Null", "null", "null"},
    {"Undefined", "undefined", "undefined"},
    {"BigInt", "123456789012345678901234567890n", "123456789012345678901234567890"},
    {"Array", "[1, [2, 3]]", "1,2,3"},
    {"Object", "({})", "[object Object]"},
    {"ObjectWithText", "({toString() { return 'own' }})", "own"},
    {"ObjectWithValueOnly", "({toString: undefined, valueOf() { return 7 }})", "7"},
    {"Function", "function (a, b) { return a + b; }", "function (a, b) { return a + b; }"},
    {"Arrow", "x => x * 2", "x => x * 2"},
    {"Latin1", R"('h\u00e9')", "h\u00e9"},
    {"BeyondLatin1", R"('\u20ac\u0416')", "\u20ac\u0416"},
    {"SurrogatePair", R"('\ud83d\ude00 ok')", "\U0001f600 ok"},
    {"ControlCharacters", R"('a\n\r\t\x01\x7f')", "a\n\r\t\x01\x7f"},
};

INSTANTIATE_TEST_SUITE_P(Value, Text, ::testing::ValuesIn(kTextConversions));

constexpr TextConversion kCuts[] = {
    {"AtU0000", R"('before\0after')", "before"},
    {"AtU0000BeyondLatin1", R"('\u20ac\0\u20ac')", "\u20ac"},
    {"AtALeadingU0000", R"('\0after')", ""},
    {"AtAnUnpairedHighSurrogate", R"('before\ud800after')", "before"},
    {"AtAnUnpairedLowSurrogate", R"('before\udc00after')", "before"},
    {"AtAHighSurrogateInTheEnd", R"('before\ud83d')", "before"},
    {"AtALeadingSurrogate", R"('\ud800after')", ""},
    {"AtASurrogateInALongText", R"('\u20ac'.repeat(3) + '\ud800' + '\u20ac'.repeat(2000))",
     "\u20ac\u20ac\u20ac"},
};

INSTANTIATE_TEST_SUITE_P(Cut, Text, ::testing::ValuesIn(kCuts));

// Every conversion here yields no text: one line, and an empty string is sent.
constexpr TextConversion kFailures[] = {
    {"ToStringThrows", "{toString() { throw new Error('no') }}", ""},
    {"ToPrimitiveThrows", "{[Symbol.toPrimitive]() { throw 1 }}", ""},
    {"GetterThrows", "{get toString() { throw 1 }}", ""},
    {"GivesAnObject", "{toString() { return {} }, valueOf() { return {} }}", ""},
    {"HasNoConversion", "Object.create(null)", ""},
    {"Symbol", "Symbol('s')", ""},
};

class TextFailure : public Text {};

TEST_P(TextFailure, IsReportedAndSentAsEmpty) {
    send(GetParam().value);
    EXPECT_EQ(host.read_frame(), frame_bytes(5, {}, {""}));
    EXPECT_EQ(errors.text(), kBreakout);
}

INSTANTIATE_TEST_SUITE_P(Value, TextFailure, ::testing::ValuesIn(kFailures));

TEST_F(Text, FailureOfOneArgumentLeavesTheOthers) {
    call("external.setItem(Symbol(), 'value', Symbol())");
    EXPECT_EQ(host.read_frame(), frame_bytes(19, {}, {"", "value", ""}));
    EXPECT_EQ(errors.text(), std::string(kBreakout) + kBreakout);
}

TEST_F(Text, IsUnchangedByAFailedConversion) {
    JSValueRef exception = nullptr;
    std::string text = "before";
    KsJS_proxy::getStringFromJavascriptRef(page.get(), page.evaluate("Symbol()", exception), text);
    EXPECT_EQ(text, "before");
    EXPECT_EQ(errors.text(), kBreakout);
}

TEST_F(Text, ReplacesThePreviousContent) {
    JSValueRef exception = nullptr;
    std::string text = "before";
    KsJS_proxy::getStringFromJavascriptRef(page.get(), page.evaluate("''", exception), text);
    EXPECT_EQ(text, "");
}

TEST_F(Text, IsCompleteAtEveryLength) {
    for (const int length : {340, 341, 342, 1'023, 1'024, 1'025, 30'000}) {
        send("'\\u0416'.repeat(" + std::to_string(length) + ")");
        std::string text;
        for (int i = 0; i < length; ++i) text += "\u0416";
        EXPECT_EQ(host.read_frame(), frame_bytes(5, {}, {text})) << length;
    }
}

TEST_F(Text, MayBeTwentyMegabytesLong) {
    constexpr std::size_t kLength = 20'000'000;
    const std::string expected = frame_bytes(5, {}, {std::string(kLength, 'x')});
    std::future<std::string> received =
        std::async(std::launch::async, [&] { return host.read(expected.size()); });
    send("'x'.repeat(" + std::to_string(kLength) + ")");
    EXPECT_TRUE(received.get() == expected);
    EXPECT_TRUE(host.is_quiet());
}

TEST_F(Text, OfAnEndlessRecursionIsEmpty) {
    std::future<std::vector<std::string>> received = std::async(std::launch::async, [&] {
        std::vector<std::string> frames;
        do frames.push_back(host.read_frame());
        while (frames.back() != frame_bytes(6, {}, {}) && !frames.back().empty());
        return frames;
    });
    call(R"(
        endless = {toString() { external.sendAction(endless); return 'x' }};
        external.sendAction(endless);
        external.logOff())");

    // The innermost call goes first.
    const std::vector<std::string> frames = received.get();
    ASSERT_GT(frames.size(), 2U);
    EXPECT_EQ(frames.front(), frame_bytes(5, {}, {""}));
    EXPECT_EQ(std::ranges::count(frames, frame_bytes(5, {}, {"x"})), std::ssize(frames) - 2);
    EXPECT_EQ(errors.text(), kBreakout);
}

}  // namespace
}  // namespace kestrel::testing
