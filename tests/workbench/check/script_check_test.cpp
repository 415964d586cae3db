#include "workbench/check/script_check.h"

#include <gmock/gmock.h>

#include "tests/support/script_context.h"

namespace kestrel::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

// Runs the check's script in a context without a page and passes its reports to the check. The
// context has no timers: `until` is tested in real pages.
class ScriptCheckTest : public ::testing::Test {
  protected:
    static void run(ScriptCheck& check) {
        const ScriptContext page;
        page.text_of(
            "var traces = [];"
            "var external = {writeTraceMessage: (text) => { traces.push(text); }};"
            "var performance = {now: () => 0};");
        page.text_of(check.on_page_shown());
        const int count = std::stoi(page.text_of("traces.length"));
        for (int i = 0; i < count; ++i) {
            trace(check, page.text_of("traces[" + std::to_string(i) + "]"));
        }
    }
    static void trace(ScriptCheck& check, const std::string& text) {
        const Command* command = find_command(to_host("writeTraceMessage"));
        EXPECT_EQ(check.on_command(*command, Request({{}, {text, "", "", ""}})), "");
    }
};

TEST_F(ScriptCheckTest, CountsMetExpectations) {
    ScriptCheck check("workbench.expect(true, 'a'); workbench.expect(1, 'b');");
    EXPECT_FALSE(check.is_over());
    run(check);
    EXPECT_TRUE(check.is_over());
    EXPECT_THAT(check.failures(), IsEmpty());
    EXPECT_EQ(check.success(), "all expectations held: 2");
}

TEST_F(ScriptCheckTest, ReportsFailedExpectations) {
    ScriptCheck check(
        "workbench.expect(0, 'a \"text\"'); workbench.expect(true, 'b');"
        "workbench.expect(null);");
    run(check);
    EXPECT_THAT(check.failures(), ElementsAre("a \"text\"", "undefined"));
}

TEST_F(ScriptCheckTest, FailsWhenTheScriptThrows) {
    ScriptCheck check("workbench.expect(true, 'a');\nnonsense();");
    run(check);
    EXPECT_TRUE(check.is_over());
    ASSERT_EQ(check.failures().size(), 1U);
    EXPECT_THAT(check.failures()[0], HasSubstr("the script ends without an error: ReferenceError"));
}

TEST_F(ScriptCheckTest, SucceedsWithoutExpectations) {
    ScriptCheck check("");
    run(check);
    EXPECT_TRUE(check.is_over());
    EXPECT_THAT(check.failures(), IsEmpty());
}

TEST_F(ScriptCheckTest, AcceptsAScriptThatEndsInAComment) {
    ScriptCheck check("workbench.expect(true, 'a') // done");
    run(check);
    EXPECT_EQ(check.success(), "all expectations held: 1");
}

TEST_F(ScriptCheckTest, RunsTheScriptOnce) {
    ScriptCheck check("");
    EXPECT_NE(check.on_page_shown(), "");
    EXPECT_EQ(check.on_page_shown(), "");
}

TEST_F(ScriptCheckTest, ReportsAnUnfinishedScript) {
    ScriptCheck check("");
    EXPECT_THAT(check.failures(), ElementsAre("the page was never shown"));
    check.on_page_shown();
    EXPECT_THAT(check.failures(), ElementsAre("the script has not come to its end"));
}

TEST_F(ScriptCheckTest, IgnoresOtherTraceMessages) {
    ScriptCheck check("");
    for (const char* text : {"", "a line", "{", "[]", "null", "{}", R"({"workbench":1})",
                             R"({"workbench":null})", R"({"over":true})"}) {
        trace(check, text);
    }
    EXPECT_FALSE(check.is_over());
    EXPECT_THAT(check.failures(), ElementsAre("the page was never shown"));
}

TEST_F(ScriptCheckTest, TreatsAMalformedReportAsAFailure) {
    ScriptCheck check("");
    run(check);
    trace(check, R"({"workbench":{}})");
    trace(check, R"({"workbench":{"held":"yes","text":["a"]}})");
    EXPECT_THAT(check.failures(), ElementsAre("null", R"(["a"])"));
}

TEST(ScriptCheckSyntax, ReportsASyntaxErrorWithItsLine) {
    EXPECT_EQ(ScriptCheck::find_syntax_error("await 1;\nreturn;"), "");
    EXPECT_THAT(ScriptCheck::find_syntax_error("let a;\nlet a;"),
                StartsWith("line 2: Cannot declare"));
    EXPECT_THAT(ScriptCheck::find_syntax_error("{"), StartsWith("line 2: "));
}

}  // namespace
}  // namespace kestrel::testing
