// Answers of the host, delivered to the page's callbacks.
#include <cstring>
#include <list>

#include "tests/extension/page_glue.h"
#include "tests/support/collector.h"

namespace kestrel::testing {
namespace {

const std::string kDelivered = frame_bytes(33, {}, {});

class Answer : public PageGlueWithPage {
  protected:
    Answer() {
        page.text_of(
            "called = []; keep = function() { called.push(Array.from(arguments)) };"
            "onCaps = keep; zyns_ajax_complete = keep");
    }

    std::string calls() const { return page.text_of("JSON.stringify(called)"); }

    void expect_delivered() const {
        EXPECT_EQ(host.read_frame(), kDelivered);
        EXPECT_TRUE(host.is_quiet());
    }

    void expect_refused(const std::string& lines) const {
        EXPECT_EQ(errors.text(), lines);
        EXPECT_EQ(calls(), "[]");
        EXPECT_TRUE(host.is_quiet());
    }
};

using AnswerWithoutPage = PageGlue;

TEST_F(Answer, CallsTheNamedFunction) {
    deliver({"onCaps"});
    EXPECT_EQ(calls(), "[[]]");
    EXPECT_EQ(errors.text(), "");
    expect_delivered();
}

TEST_F(Answer, PassesNoArgumentsToOtherCallbacks) {
    deliver({"onCaps", "1", "2", "3", "4", "5"});
    EXPECT_EQ(calls(), "[[]]");
    expect_delivered();
}

TEST_F(Answer, PassesFiveStringsToAnAjaxCallback) {
    deliver({"zyns_ajax_complete", "200", "", "h\u00e9", "null", "5"});
    EXPECT_EQ(calls(), "[[\"200\",\"\",\"h\u00e9\",\"null\",\"5\"]]");
    EXPECT_EQ(page.text_of("called[0].every(argument => typeof argument === 'string')"), "true");
    expect_delivered();
}

TEST_F(Answer, PassesArgumentsIfTheTextContainsTheAjaxName) {
    deliver({"(function() { keep('own', ...arguments) /* zyns_ajax_complete_7 */ })", "1", "2"});
    EXPECT_EQ(calls(), R"([["own","1","2","","",""]])");
    expect_delivered();
}

TEST_F(Answer, AcceptsAnyExpressionThatEvaluatesToAFunction) {
    page.text_of("shop = {onCaps: keep}");
    deliver({"shop.onCaps"});
    deliver({"() => keep('arrow')"});
    deliver({"(function() { keep(this === globalThis) })"});
    EXPECT_EQ(calls(), R"([[],["arrow"],[true]])");
    for (int i = 0; i < 3; ++i) EXPECT_EQ(host.read_frame(), kDelivered);
}

TEST_F(Answer, ResolvesTheCallbackAtDelivery) {
    HandlerStrings strings{"onCaps"};
    KsJS_proxy::zyns_cb_wrapper(nullptr, strings.data());
    strings[0] = "gone with its handler";
    page.text_of("onCaps = () => keep('replaced')");
    EXPECT_TRUE(host.is_quiet());
    run_main_loop_until_idle();
    EXPECT_EQ(calls(), R"([["replaced"]])");
    expect_delivered();
}

TEST_F(Answer, IsReportedAfterMessagesOfTheCallback) {
    deliver({"() => external.refresh()"});
    EXPECT_EQ(host.read_frame(), frame_bytes(7, {}, {}));
    expect_delivered();
}

TEST_F(Answer, ReportsUnknownCallback) {
    deliver({"notDefined"});
    expect_refused(kNoCallback);
}

TEST_F(Answer, ReportsACallbackThatIsNotAnObject) {
    for (const char* callback :
         {"undefined", "null", "7", "'onCaps'", "true", "Symbol()", "", " "}) {
        const StderrCapture each;
        deliver({callback});
        EXPECT_EQ(each.text(), kNoCallback) << callback;
    }
    expect_refused("");
}

TEST_F(Answer, ReportsAFunctionDeclaration) {
    deliver({"function onAnswer() { keep() }"});
    expect_refused(kNoCallback);
}

TEST_F(Answer, ReportsASyntaxError) {
    deliver({"onCaps("});
    expect_refused(kNoCallback);
}

TEST_F(Answer, ReportsACallbackTextThatThrows) {
    deliver({"(() => { throw new Error('no') })()"});
    expect_refused(kNoCallback);
}

TEST_F(Answer, ReportsAnExceptionWithoutText) {
    deliver({"(() => { throw Symbol() })()"});
    expect_refused(std::string(kBreakout) + kNoCallback);
}

TEST_F(Answer, ReportsInvalidUtf8) {
    deliver({"onCaps /* \xff */"});
    expect_refused(kNoCallback);
}

TEST_F(Answer, ReportsAnObjectThatIsNotCallableAndTellsTheHost) {
    deliver({"({})"});
    EXPECT_EQ(errors.text(), kCallbackFailed);
    EXPECT_EQ(calls(), "[]");
    expect_delivered();
}

TEST_F(Answer, ReportsAThrowingCallbackAndTellsTheHost) {
    deliver({"() => { keep('then'); throw new Error('no') }"});
    EXPECT_EQ(errors.text(), kCallbackFailed);
    EXPECT_EQ(calls(), R"([["then"]])");
    expect_delivered();
}

TEST_F(Answer, PassesInvalidUtf8AsEmptyArgument) {
    deliver({"zyns_ajax_complete", "\xff", "a\xc3", "ok", "", ""});
    EXPECT_EQ(calls(), R"([["","","ok","",""]])");
    expect_delivered();
}

TEST_F(Answer, AcceptsListsOfAnyLength) {
    auto* answer = new std::list<char*>{strdup("keep")};
    for (int i = 0; i < 1'000; ++i) answer->push_back(strdup("argument"));
    EXPECT_EQ(KsJS_proxy::szyns_cb_wrapper(answer), 0);
    EXPECT_EQ(page.text_of("called[0].length"), "1000");
    EXPECT_EQ(page.text_of("called[0].every(text => text === 'argument')"), "true");
    expect_delivered();
}

// So much text, here and in the next one, that the collector runs meanwhile.
TEST_F(Answer, KeepsLargeArgumentsWhole) {
    if (!kCollectorMayRun) GTEST_SKIP();
    const std::string large(20'000'000, '.');
    page.text_of("zyns_ajax_complete = (...texts) => keep(texts.map(text => text.length).join())");
    for (int i = 0; i < 4; ++i) {
        deliver({"zyns_ajax_complete", "200", large, "json", large, "none"});
        EXPECT_EQ(page.text_of("called.pop()[0]"), "3,20000000,4,20000000,4");
        expect_delivered();
    }
}

TEST_F(Answer, KeepsAllElementsOfALongList) {
    if (!kCollectorMayRun) GTEST_SKIP();
    constexpr int kCount = 10'000;
    auto* answer = new std::list<char*>{strdup("keep")};
    for (int i = 0; i < kCount; ++i) {
        answer->push_back(strdup((std::to_string(i) + std::string(8'000, '.')).c_str()));
    }
    KsJS_proxy::szyns_cb_wrapper(answer);
    EXPECT_EQ(page.text_of("called[0].findIndex((text, i) => text !== i + '.'.repeat(8000))"),
              "-1");
    EXPECT_EQ(page.text_of("called[0].length"), std::to_string(kCount));
    expect_delivered();
}

TEST_F(Answer, IgnoresAnEmptyList) {
    EXPECT_EQ(KsJS_proxy::szyns_cb_wrapper(new std::list<char*>), 0);
    expect_refused("");
}

TEST_F(AnswerWithoutPage, IsReported) {
    deliver({"onCaps"});
    EXPECT_EQ(errors.text(), kNoCallback);
    EXPECT_TRUE(host.is_quiet());
}

}  // namespace
}  // namespace kestrel::testing
