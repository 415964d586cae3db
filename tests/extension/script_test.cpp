// Scripts of the host, run in the page.
#include <glib.h>

#include <thread>

#include "tests/extension/page_glue.h"

namespace kestrel::testing {
namespace {

using Script = PageGlueWithPage;
using ScriptWithoutPage = PageGlue;

TEST_F(Script, RunsAtOnceOnTheMainThread) {
    insert("done = 'at once'");
    EXPECT_EQ(page.text_of("done"), "at once");
    g_main_context_acquire(nullptr);
    insert("done = 'at once again'");
    g_main_context_release(nullptr);
    EXPECT_EQ(page.text_of("done"), "at once again");
    EXPECT_EQ(errors.text(), "");
    EXPECT_TRUE(host.is_quiet());
}

TEST_F(Script, RunsAsTheBodyOfAFunctionOfTheGlobalObject) {
    insert("var local = 1; self = this; count = arguments.length; return 'ignored'");
    EXPECT_EQ(page.text_of("typeof local"), "undefined");
    EXPECT_EQ(page.text_of("self === globalThis"), "true");
    EXPECT_EQ(page.text_of("count"), "0");
    EXPECT_EQ(errors.text(), "");
}

TEST_F(Script, KeepsNonAsciiText) {
    insert("text = 'h\u00e9 \u20ac \U0001f600'");
    EXPECT_EQ(page.text_of("text"), "h\u00e9 \u20ac \U0001f600");
}

TEST_F(Script, MayCallExternal) {
    insert("external.refresh()");
    EXPECT_EQ(host.read_frame(), frame_bytes(7, {}, {}));
}

TEST_F(Script, IgnoresEmptyText) {
    insert("");
    EXPECT_EQ(errors.text(), "");
}

TEST_F(Script, IgnoresInvalidUtf8) {
    insert("done = '\xff'");
    EXPECT_EQ(page.text_of("typeof done"), "undefined");
    EXPECT_EQ(errors.text(), "");
}

TEST_F(Script, EndsAtItsFirstNul) {
    using namespace std::string_literals;
    insert("done = 1\0 + 1"s);
    EXPECT_EQ(page.text_of("done"), "1");
    EXPECT_EQ(errors.text(), "");
}

TEST_F(Script, ReportsTextThatClosesItsFunction) {
    for (const char* script :
         {"}), (done = 1), (function() {", "}, done() {", "}, function() {", "} + function() {",
          "}}).anonymous, ({anonymous() {", "}; done = 1; {", "return 1 /*", "return `"}) {
        const StderrCapture each;
        insert(script);
        EXPECT_EQ(each.text(), kScriptFailed) << script;
    }
    EXPECT_EQ(page.text_of("typeof done"), "undefined");
}

TEST_F(Script, MayEndInAComment) {
    insert("done = 1 // text");
    insert("done += 1 <!-- text");
    EXPECT_EQ(page.text_of("done"), "2");
}

// As the body of a function that script makes with its own constructor.
TEST_F(Script, BehavesLikeAFunctionMadeByTheConstructor) {
    page.text_of("shown = []; show = value => { shown.push(String(value)) }");
    for (const std::string script :
         {"show(new Error().line)", "show(arguments.callee.name)", "show(typeof anonymous)",
          "'use strict'; show((function() { return this === undefined })())",
          "with ({a: 1}) show(a)", "show(010)", "show(new.target)", "yield = 1; show(yield)",
          "await = 1; show(await)", "'use strict'; with ({}) {}", "show(super.a)", "let a; let a",
          "import 'a'", "show(import.meta)"}) {
        const StderrCapture quiet;
        insert(script);
        page.text_of("try { new Function(" + ("`" + script + "`") + ")() } catch {}");
        EXPECT_EQ(page.text_of("shown.length % 2 === 0 && shown[0] === shown[1]"), "true")
            << script << ": " << page.text_of("shown.join()");
        page.text_of("shown = []");
    }
}

TEST_F(Script, ReportsASyntaxError) {
    insert("done = 1; (");
    EXPECT_EQ(errors.text(), kScriptFailed);
    EXPECT_EQ(page.text_of("typeof done"), "undefined");
}

TEST_F(Script, ReportsAnException) {
    insert("done = 1; throw new Error('no')");
    EXPECT_EQ(errors.text(), kScriptFailed);
    EXPECT_EQ(page.text_of("done"), "1");
    insert("done = 2");
    EXPECT_EQ(page.text_of("done"), "2");
}

TEST_F(Script, ReportsAnExceptionWithoutText) {
    insert("throw Symbol()");
    EXPECT_EQ(errors.text(), std::string(kScriptFailed) + kBreakout);
}

TEST_F(Script, FromAnotherThreadWaitsForTheMainLoop) {
    g_main_context_acquire(nullptr);
    std::thread([] { insert("done = 'by the main loop'"); }).join();
    EXPECT_EQ(page.text_of("typeof done"), "undefined");
    run_main_loop_until_idle();
    EXPECT_EQ(page.text_of("done"), "by the main loop");
    g_main_context_release(nullptr);
}

TEST_F(ScriptWithoutPage, IsReported) {
    insert("done = 1");
    EXPECT_EQ(errors.text(), kScriptFailed);
}

TEST_F(ScriptWithoutPage, IgnoresEmptyText) {
    insert("");
    EXPECT_EQ(errors.text(), "");
}

}  // namespace
}  // namespace kestrel::testing
