// Places that take a string and nothing else.
#include <string>

#include "tests/jsapi/page_api.h"

namespace kestrel::testing {
namespace {

using StringOnly = PageApiWithHost;

TEST_F(StringOnly, AjaxSendsOtherTypesAsEmpty) {
    call("external.ajax(42, true, null, undefined, {}, () => 1)");
    EXPECT_EQ(host.read_frame(), frame_bytes(11, {}, {"", "", "", "", "", ""}));
    call("external.ajax(Symbol(), 7n, [], new String('boxed'), new Date(0), /x/)");
    EXPECT_EQ(host.read_frame(), frame_bytes(11, {}, {"", "", "", "", "", ""}));
    EXPECT_EQ(errors.text(), "");
}

TEST_F(StringOnly, AjaxTestsEachArgument) {
    call("external.ajax('a', 42, 'c', null, 'e', {})");
    EXPECT_EQ(host.read_frame(), frame_bytes(11, {}, {"a", "", "c", "", "e", ""}));
    call("external.ajax(42, 'b', null, 'd', {}, 'f')");
    EXPECT_EQ(host.read_frame(), frame_bytes(11, {}, {"", "b", "", "d", "", "f"}));
}

TEST_F(StringOnly, AjaxDoesNotConvertObjects) {
    call(R"(
        was_touched = false;
        touched = () => { was_touched = true; throw new Error('touched') };
        object = {toString: touched, valueOf: touched, [Symbol.toPrimitive]: touched};
        external.ajax(object, object, object, object, object, object))");
    EXPECT_EQ(host.read_frame(), frame_bytes(11, {}, {"", "", "", "", "", ""}));
    EXPECT_EQ(page.text_of("was_touched"), "false");
}

TEST_F(StringOnly, AjaxTruncatesAndEncodesLikeOtherFunctions) {
    call(R"(external.ajax('a\0b', 'h\u00e9', '\u20ac', '\ud83d\ude00', 'x\ud800y', 'a' + 'b'))");
    EXPECT_EQ(host.read_frame(),
              frame_bytes(11, {}, {"a", "h\u00e9", "\u20ac", "\U0001f600", "x", "ab"}));
}

TEST_F(StringOnly, ErrorDialogTestsItsFirstTwo) {
    call("external.errorDialog(undefined, null, 'c', 'd', 'e')");
    EXPECT_EQ(host.read_frame(), frame_bytes(22, {}, {"", "", "c", "d", "e"}));
    call("external.errorDialog(1, 2, 3, 4, 5)");
    EXPECT_EQ(host.read_frame(), frame_bytes(22, {}, {"", "", "3", "4", "5"}));
    call("external.errorDialog({}, true, {}, true, () => 1)");
    EXPECT_EQ(host.read_frame(),
              frame_bytes(22, {}, {"", "", "[object Object]", "true", "() => 1"}));
    EXPECT_EQ(errors.text(), "");
}

TEST_F(StringOnly, ErrorDialogConvertsItsLastThree) {
    call("external.errorDialog('a', 'b', null, undefined, Symbol())");
    EXPECT_EQ(host.read_frame(), frame_bytes(22, {}, {"a", "b", "null", "undefined", ""}));
    EXPECT_EQ(errors.text(), kBreakout);
}

}  // namespace
}  // namespace kestrel::testing
