// Script values in an integer list.
#include <string>
#include <string_view>

#include "tests/jsapi/page_api.h"

namespace kestrel::testing {
namespace {

constexpr std::string_view kNotANumber = "-2147483648";

struct NumberConversion {
    std::string_view name;
    std::string_view value;  // as script
    std::string_view sent;

    friend void PrintTo(const NumberConversion& conversion, std::ostream* out) {
        *out << conversion.name;
    }
};

constexpr NumberConversion kNumberConversions[] = {
    {"Zero", "0", "0"},
    {"NegativeZero", "-0", "0"},
    {"FractionIsCut", "255.9", "255"},
    {"NegativeFractionIsCutTowardsZero", "-3.7", "-3"},
    {"NegativeFractionBelowOne", "-0.9", "0"},
    {"NumericString", "'12'", "12"},
    {"NumericStringWithBlanks", "' 7 '", "7"},
    {"HexadecimalString", "'0x10'", "16"},
    {"EmptyString", "''", "0"},
    {"OtherString", "'abc'", kNotANumber},
    {"Undefined", "undefined", kNotANumber},
    {"Null", "null", "0"},
    {"True", "true", "1"},
    {"False", "false", "0"},
    {"EmptyArray", "[]", "0"},
    {"ArrayOfOne", "[5]", "5"},
    {"ArrayOfTwo", "[5, 6]", kNotANumber},
    {"Object", "({})", kNotANumber},
    {"ObjectWithValue", "({valueOf() { return 9.9 }})", "9"},
    {"ObjectThatThrows", "({valueOf() { throw 1 }})", kNotANumber},
    {"Function", "(() => 1)", kNotANumber},
    {"Symbol", "Symbol()", kNotANumber},
    {"BigInt", "10n", "10"},
    {"NotANumber", "NaN", kNotANumber},
    {"Infinity", "Infinity", kNotANumber},
    {"NegativeInfinity", "-Infinity", kNotANumber},
    {"Greatest", "2147483647", "2147483647"},
    {"GreatestAfterTheCut", "2147483647.5", "2147483647"},
    {"OneTooGreat", "2147483648", kNotANumber},
    {"Unsigned", "3000000000", kNotANumber},
    {"Huge", "1e300", kNotANumber},
    {"LeastButOne", "-2147483647", "-2147483647"},
    {"Least", "-2147483648", "-2147483648"},
    {"LeastAfterTheCut", "-2147483648.9", "-2147483648"},
    {"OneTooSmall", "-2147483649", kNotANumber},
};

class Number : public PageApiWithHost, public ::testing::WithParamInterface<NumberConversion> {};

TEST_P(Number, BecomesAnInteger) {
    call("external.recolorImage('', 1, 2, " + std::string(GetParam().value) + ", 4, '')");
    EXPECT_EQ(host.read_frame(), frame_bytes(21, {"1", "2", GetParam().sent}, {"", ""}));
    EXPECT_EQ(errors.text(), "");
}

INSTANTIATE_TEST_SUITE_P(Value, Number, ::testing::ValuesIn(kNumberConversions));

using SettingsMenu = PageApiWithHost;

TEST_F(SettingsMenu, SendsWidthAndHeight) {
    call("external.settingsMenu(10.7, -10.7, 110, 70)");
    EXPECT_EQ(host.read_frame(), frame_bytes(10, {"10", "-10", "100", "80"}, {}));
}

TEST_F(SettingsMenu, SendsANegativeWidth) {
    call("external.settingsMenu(100, 0, 10, 0)");
    EXPECT_EQ(host.read_frame(), frame_bytes(10, {"100", "0", "-90", "0"}, {}));
}

TEST_F(SettingsMenu, SubtractsAfterTruncation) {
    call("external.settingsMenu(0.9, 0.9, 2.1, 1.8)");
    EXPECT_EQ(host.read_frame(), frame_bytes(10, {"0", "0", "2", "1"}, {}));
}

TEST_F(SettingsMenu, WrapsAroundForNaN) {
    call("external.settingsMenu(1.9, '2', null, undefined)");
    EXPECT_EQ(host.read_frame(), frame_bytes(10, {"1", "2", "-1", "2147483646"}, {}));
}

TEST_F(SettingsMenu, WrapsAroundAtBothEnds) {
    call("external.settingsMenu(-2147483648, 2147483647, 2147483647, -2147483648)");
    EXPECT_EQ(host.read_frame(), frame_bytes(10, {"-2147483648", "2147483647", "-1", "1"}, {}));
}

TEST_F(SettingsMenu, SendsZeroWidthForNaN) {
    call("external.settingsMenu(NaN, NaN, NaN, NaN)");
    EXPECT_EQ(host.read_frame(), frame_bytes(10, {kNotANumber, kNotANumber, "0", "0"}, {}));
}

}  // namespace
}  // namespace kestrel::testing
