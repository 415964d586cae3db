// Texts that come often as the same value, which the library keeps.
#include <string>

#include "tests/jsapi/page_api.h"
#include "tests/support/collector.h"

namespace kestrel::testing {
namespace {

constexpr int kOften = 12;

class RepeatedText : public PageApiWithHost {
  protected:
    // Calls with the same value `count` times.
    void send(const std::string& value, int count = kOften) const {
        call("for (let left = " + std::to_string(count) + ", value = " + value +
             "; left > 0; --left) external.sendAction(value)");
    }

    void expect(const std::string& text, int count = kOften) const {
        for (int i = 0; i < count; ++i) {
            EXPECT_EQ(host.read_frame(), frame_bytes(5, {}, {text})) << i;
        }
    }
};

TEST_F(RepeatedText, IsTheSameAtEveryLength) {
    for (std::size_t length = 0; length < 70; ++length) {
        send("'x'.repeat(" + std::to_string(length) + ")");
        expect(std::string(length, 'x'));
    }
}

TEST_F(RepeatedText, IsTheSameAtEveryLengthOfItsBytes) {
    std::string text;
    for (std::size_t length = 0; length < 24; ++length) {
        send("'\\u20ac'.repeat(" + std::to_string(length) + ") + 'xy'.repeat(" +
             std::to_string(length % 2) + ")");
        expect(text + (length % 2 == 0 ? "" : "xy"));
        text += "\u20ac";
    }
}

// A new string often stands where one was that has gone.
TEST_F(RepeatedText, IsNeverThatOfAStringThatHasGone) {
    if (!kCollectorMayRun) GTEST_SKIP();
    for (int i = 0; i < 2'000; ++i) {
        const std::string text = "value " + std::to_string(i);
        send("'value ' + " + std::to_string(i));
        expect(text);
        if (i % 20 == 0) JSSynchronousGarbageCollectForDebugging(page.get());
    }
}

TEST_F(RepeatedText, IsThatOfItsValueAmongMany) {
    page.text_of("names = Array.from({length: 500}, (_, i) => 'name' + i)");
    for (int round = 0; round < 3; ++round) {
        for (int i = 0; i < 500; ++i) {
            send("names[" + std::to_string(i) + "]");
            expect("name" + std::to_string(i));
        }
    }
}

TEST_F(RepeatedText, OfAnObjectIsAskedForEachTime) {
    page.text_of("asked = 0; object = {toString() { return 'asked ' + ++asked }}; 0");
    send("object");
    for (int i = 1; i <= kOften; ++i) expect("asked " + std::to_string(i), 1);
}

TEST_F(RepeatedText, ComesFromEveryArgumentOfEveryFunction) {
    call("for (let i = 0; i < 12; ++i) external.setItem('name', 'cb', 'name')");
    call("for (let i = 0; i < 12; ++i) external.ajax('name', '', 'cb', '', 'name', 7)");
    for (int i = 0; i < kOften; ++i) {
        EXPECT_EQ(host.read_frame(), frame_bytes(19, {}, {"name", "cb", "name"}));
    }
    for (int i = 0; i < kOften; ++i) {
        EXPECT_EQ(host.read_frame(), frame_bytes(11, {}, {"name", "", "cb", "", "name", ""}));
    }
}

TEST_F(RepeatedText, MayComeWhileItIsReadForTheFirstTime) {
    call(R"(
        name = 'a name';
        object = {toString() { for (let i = 0; i < 12; ++i) external.sendAction(name); return name }};
        external.setItem(name, object, name);
        external.setItem(name, object, name))");
    for (int i = 0; i < 2; ++i) {
        expect("a name");
        EXPECT_EQ(host.read_frame(), frame_bytes(19, {}, {"a name", "a name", "a name"}));
    }
}

TEST_F(RepeatedText, IsOfEachPageItsOwn) {
    send("'of the first page'");
    expect("of the first page");
    for (int i = 0; i < 20; ++i) {
        const ScriptContext other;
        KsJS_proxy::loadJSAPI(other.get(), other.global());
        const std::string text = "of page " + std::to_string(i);
        other.text_of("for (let left = 12; left > 0; --left) external.sendAction('" + text + "')");
        expect(text);
    }
    send("'of the first page'");
    expect("of the first page");
}

// As WebKit's pages are.
TEST_F(RepeatedText, IsTheSameInAnotherPageOfTheSameMachine) {
    send("'a text'");
    expect("a text");
    const JSGlobalContextRef other =
        JSGlobalContextCreateInGroup(JSContextGetGroup(page.get()), nullptr);
    KsJS_proxy::loadJSAPI(other, JSContextGetGlobalObject(other));
    const JSStringRef script = JSStringCreateWithUTF8CString(
        "for (const text of ['a text', 'another']) {"
        "  for (let left = 12; left > 0; --left) external.sendAction(text);"
        "}");
    EXPECT_NE(JSEvaluateScript(other, script, nullptr, nullptr, 1, nullptr), nullptr);
    JSStringRelease(script);
    JSGlobalContextRelease(other);
    expect("a text");
    expect("another");
    send("'another'");
    expect("another");
}

TEST_F(RepeatedText, OfNoValueAtAllIsThatOfNull) {
    const JSValueRef nothing = nullptr;
    for (int i = 0; i < kOften; ++i) {
        KsJS_proxy::sendAction(page.get(), nullptr, nullptr, 1, &nothing, nullptr);
    }
    expect("null");
}

}  // namespace
}  // namespace kestrel::testing
