#include "workbench/answers/answer.h"

#include <gmock/gmock.h>

#include "tests/support/frame_bytes.h"
#include "tests/support/script_context.h"

namespace kestrel::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

const AjaxResult kResult{"7", "404", "Not \"found\"", "A: b", "line\nline"};

// The arguments that the page's callback gets, as JSON.
std::string delivered(const std::string& callback, const ScriptValue& value) {
    const ScriptContext page;
    page.text_of("var got = 'nothing'; function take(...values) { got = JSON.stringify(values); }");
    page.text_of("(" + call_back(callback, value)->callback + ")()");
    return page.text_of("got");
}

TEST(Answer, CallsTheCallbackByNameOrSourceText) {
    EXPECT_EQ(delivered("take", {{"a", {1, nullptr}}}), R"([{"a":[1,null]}])");
    EXPECT_EQ(delivered("(value) => take(value, 2)", 1), "[1,2]");
    EXPECT_EQ(delivered("function (value) { take(value); }", "x"), R"(["x"])");
    EXPECT_EQ(delivered("take // the usual one", true), "[true]");
}

TEST(Answer, IsEmptyWithoutACallback) {
    EXPECT_EQ(call_back("", 1), std::nullopt);
    EXPECT_EQ(call_back("", kResult), std::nullopt);
}

TEST(Answer, PassesAnAjaxResultAsFiveArguments) {
    const auto answer = call_back("page.zyns_ajax_complete7", kResult);
    EXPECT_EQ(answer->callback, "page.zyns_ajax_complete7");
    EXPECT_THAT(answer->arguments, ElementsAre("7", "404", "Not \"found\"", "A: b", "line\nline"));
}

// The extension passes arguments only to callbacks whose text contains kAjaxCompletion.
TEST(Answer, EmbedsAnAjaxResultForOtherCallbacks) {
    const auto answer = call_back("take", kResult);
    EXPECT_THAT(answer->arguments, IsEmpty());
    const ScriptContext page;
    page.text_of("var got; function take(...values) { got = JSON.stringify(values); }");
    page.text_of("(" + answer->callback + ")()");
    EXPECT_EQ(page.text_of("got"), R"(["7","404","Not \"found\"","A: b","line\nline"])");
}

TEST(Answer, SerialisesCallbackThenArguments) {
    EXPECT_EQ(bytes_text(*answer_frame({"f", {"a", "", "b"}})),
              frame_bytes(1, {}, {"f", "a", "", "b"}));
}

TEST(Answer, RefusesAMessageOverTheExtensionsLimit) {
    EXPECT_NE(answer_frame({std::string(kMaxInboundPayload - 1, 'x'), {}}), nullptr);
    EXPECT_EQ(answer_frame({std::string(kMaxInboundPayload, 'x'), {}}), nullptr);
}

}  // namespace
}  // namespace kestrel::testing
