// Callbacks that are named: from the second time on they are looked up instead of evaluated, which
// must find the same.
#include <string>

#include "tests/extension/page_glue.h"

namespace kestrel::testing {
namespace {

class NamedCallback : public PageGlueWithPage {
  protected:
    NamedCallback() { prepare(page); }

    static void prepare(const ScriptContext& context) {
        context.text_of("called = ''; say = what => () => { called += what }; onAnswer = say('a')");
    }

    static void deliver_often(const std::string& callback) {
        for (int i = 0; i < 3; ++i) deliver({callback});
    }

    std::string called() const { return page.text_of("called"); }
};

TEST_F(NamedCallback, IsCalledEachTime) {
    deliver_often("onAnswer");
    EXPECT_EQ(called(), "aaa");
    EXPECT_EQ(errors.text(), "");
    for (int i = 0; i < 3; ++i) EXPECT_EQ(host.read_frame(), frame_bytes(33, {}, {}));
}

TEST_F(NamedCallback, IsWhatTheNameMeansNow) {
    deliver_often("onAnswer");
    page.text_of("onAnswer = say('b')");
    deliver_often("onAnswer");
    EXPECT_EQ(called(), "aaabbb");
}

TEST_F(NamedCallback, IsABindingOfScriptBeforeAPropertyOfTheWindow) {
    deliver_often("onAnswer");
    page.text_of("let onAnswer = say('b')");
    deliver_often("onAnswer");
    EXPECT_EQ(called(), "aaabbb");
}

TEST_F(NamedCallback, OfAGetterIsAskedForOnceATime) {
    page.text_of(
        "asked = 0; Object.defineProperty(globalThis, 'late', {get() { ++asked; return onAnswer "
        "}})");
    deliver_often("late");
    EXPECT_EQ(called() + page.text_of("asked"), "aaa3");
}

TEST_F(NamedCallback, MayBeAPartOfAnObject) {
    page.text_of("shop = {$on: {answer_1: say('a')}}");
    deliver_often("shop.$on.answer_1");
    page.text_of("shop.$on = {answer_1: say('b')}");
    deliver({"shop.$on.answer_1"});
    EXPECT_EQ(called(), "aaab");
}

// Some of these mean something else in the body of a function.
TEST_F(NamedCallback, MayHaveANameOfScriptsOwn) {
    for (const std::string name : {"arguments", "arguments.late", "this.onAnswer", "async", "let",
                                   "static", "yield", "await", "anonymous"}) {
        page.text_of(
            "arguments = say('a'); arguments.late = say('a');"
            "for (const name of ['async', 'let', 'static', 'yield', 'await', 'anonymous'])"
            "  globalThis[name] = say('a')");
        deliver_often(name);
        EXPECT_EQ(page.text_of("[called, called = ''][0]"), "aaa") << name;
    }
    EXPECT_EQ(errors.text(), "");
}

TEST_F(NamedCallback, ThatIsNoneIsALineEachTime) {
    for (const char* text : {"missing", "missing.too", "7", "7a", ".onAnswer", "onAnswer.",
                             "shop..onAnswer", "if", "new.target", "super.a", "onAnswer;;}"}) {
        const StderrCapture each;
        deliver_often(text);
        EXPECT_EQ(each.text(), std::string(kNoCallback) + kNoCallback + kNoCallback) << text;
    }
    EXPECT_EQ(called(), "");
    EXPECT_TRUE(host.is_quiet());
}

TEST_F(NamedCallback, MayAppearLater) {
    deliver_often("later");
    page.text_of("later = say('a')");
    deliver_often("later");
    EXPECT_EQ(called(), "aaa");
}

TEST_F(NamedCallback, MayTakeTurnsWithAnother) {
    page.text_of("onOther = say('b')");
    for (int i = 0; i < 3; ++i) {
        deliver({"onAnswer"});
        deliver({"onOther"});
        deliver({"onOther"});
    }
    EXPECT_EQ(called(), "abbabbabb");
}

TEST_F(NamedCallback, IsThatOfThePageThatIsThere) {
    deliver_often("onAnswer");
    const ScriptContext next;
    prepare(next);
    jsContext = next.get();
    deliver_often("onAnswer");
    EXPECT_EQ(next.text_of("called"), "aaa");
    jsContext = page.get();
    deliver_often("onAnswer");
    EXPECT_EQ(called(), "aaaaaa");
}

TEST_F(NamedCallback, MayBringAnotherAnswerWhileItIsLookedUp) {
    const std::string script = R"(
        depth = 0;
        Object.defineProperty(globalThis, 'deep', {get() {
            if (++depth < 4) globalThis.deliverAnother();
            return onAnswer;
        }}))";
    page.text_of(script);
    const JSStringRef name = JSStringCreateWithUTF8CString("deliverAnother");
    const JSObjectRef function =
        JSObjectMakeFunctionWithCallback(page.get(), name,
                                         [](JSContextRef context, JSObjectRef, JSObjectRef, size_t,
                                            const JSValueRef[], JSValueRef*) {
                                             deliver({"onAnswer"});
                                             deliver({"deep"});
                                             return JSValueMakeUndefined(context);
                                         });
    JSObjectSetProperty(page.get(), page.global(), name, function, kJSPropertyAttributeNone,
                        nullptr);
    JSStringRelease(name);
    deliver_often("onAnswer");
    deliver_often("deep");
    EXPECT_EQ(called(), std::string(3 + 3 + 3 + 3, 'a'));
}

}  // namespace
}  // namespace kestrel::testing
