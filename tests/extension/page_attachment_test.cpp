// What a new page gets, and which page is the current one.
#include "extension/page_attachment.h"

#include <thread>

#include "extension/resources.h"
#include "log/zynlog.h"
#include "tests/extension/fake_page.h"
#include "tests/extension/page_glue.h"
#include "tests/support/log_recorder.h"

namespace kestrel::testing {
namespace {

using enum FakePage::FrameKind;

class PageAttachment : public PageGlue {
  protected:
    PageAttachment() {
        clear_log();
        for (const ScriptContext* context : {&first, &second}) {
            context->text_of("window = globalThis");
        }
    }
    ~PageAttachment() override { take_resources(); }

    void attach(const FakePage& page) const {
        on_window_object_cleared(world, page.page(), page.frame(), nullptr);
    }

    ScriptContext first;
    ScriptContext second;
    WebKitScriptWorld* world = webkit_script_world_get_default();
};

TEST_F(PageAttachment, AddsTheApiToTheMainFrame) {
    const FakePage page(main, first.get());
    attach(page);
    EXPECT_EQ(web_frame, page.frame());
    EXPECT_EQ(web_world, world);
    EXPECT_EQ(getJsContext(), first.get());
    EXPECT_EQ(globalObject, first.global());
    EXPECT_EQ(first.text_of("String(external)"), "[object JSAPI]");
    first.text_of("external.refresh()");
    EXPECT_EQ(host.read_frame(), frame_bytes(7, {}, {}));
    EXPECT_EQ(errors.text(), "");
}

TEST_F(PageAttachment, LogsTheVersionOfWebKit) {
    attach(FakePage(main, first.get()));
    const std::string line = "Major: " + std::to_string(webkit_get_major_version()) +
                             ", Minor: " + std::to_string(webkit_get_minor_version()) +
                             ", Micro: " + std::to_string(webkit_get_micro_version());
    EXPECT_EQ(logged(), std::vector<LogLine>({{29, kInfo, line}}));
}

TEST_F(PageAttachment, IgnoresSubframes) {
    const FakePage page(main, first.get());
    const FakePage framed(other, second.get());
    attach(page);
    clear_log();
    set_resources("{}");
    attach(framed);
    EXPECT_EQ(second.text_of("typeof external + typeof ZYNS"), "undefinedundefined");
    EXPECT_EQ(web_frame, page.frame());
    EXPECT_EQ(jsContext, first.get());
    EXPECT_EQ(take_resources(), "{}");
    EXPECT_TRUE(logged().empty());
}

TEST_F(PageAttachment, HoldsTheFrameWhileThePageLives) {
    FakePage page(main, first.get());
    attach(page);
    attach(page);
    EXPECT_TRUE(page.is_frame_held());
    page.close();
    EXPECT_FALSE(page.is_frame_held());
}

TEST_F(PageAttachment, SetsTheGlobalsToTheCurrentPage) {
    FakePage opener(main, first.get());
    FakePage popup(main, second.get());
    attach(opener);
    attach(popup);
    EXPECT_EQ(web_frame, popup.frame());
    EXPECT_EQ(jsContext, second.get());
    EXPECT_EQ(globalObject, second.global());
    popup.close();
    EXPECT_EQ(web_frame, opener.frame());
    EXPECT_EQ(web_world, world);
    EXPECT_EQ(jsContext, first.get());
    EXPECT_EQ(globalObject, first.global());
    opener.close();
    EXPECT_EQ(web_frame, nullptr);
    EXPECT_EQ(web_world, nullptr);
    EXPECT_EQ(jsContext, nullptr);
    EXPECT_EQ(globalObject, nullptr);
}

TEST_F(PageAttachment, KeepsTheCurrentPageWhenAnotherCloses) {
    FakePage opener(main, first.get());
    const FakePage popup(main, second.get());
    attach(opener);
    attach(popup);
    opener.close();
    EXPECT_EQ(jsContext, second.get());
}

TEST_F(PageAttachment, MakesAPageThatNavigatesTheCurrentOne) {
    FakePage opener(main, first.get());
    FakePage popup(main, second.get());
    attach(opener);
    attach(popup);
    attach(opener);
    EXPECT_EQ(jsContext, first.get());
    opener.close();
    EXPECT_EQ(jsContext, second.get());
}

// The reader thread takes the script before the other page is attached.
void insert_from_reader(const std::string& script) {
    std::thread([&] {
        HandlerStrings strings{script};
        KsJS_proxy::insertJS(nullptr, strings.data());
    }).join();
}

TEST_F(PageAttachment, RefusesScriptsOfThePageBefore) {
    const FakePage page(main, first.get());
    attach(page);
    g_main_context_acquire(nullptr);
    insert_from_reader("where = 'too late'");
    page.show(second.get());
    attach(page);
    insert_from_reader("where = 'second'");
    deliver({"() => { answered = true }"});
    EXPECT_EQ(errors.text(), kScriptFailed);
    EXPECT_EQ(first.text_of("typeof where + typeof answered"), "undefinedundefined");
    EXPECT_EQ(second.text_of("where + answered"), "secondtrue");
    g_main_context_release(nullptr);
}

TEST_F(PageAttachment, RefusesScriptsFromBeforeAPopupThatHasClosed) {
    const FakePage opener(main, first.get());
    FakePage popup(main, second.get());
    attach(opener);
    g_main_context_acquire(nullptr);
    insert_from_reader("where = 'before the popup'");
    attach(popup);
    popup.close();
    run_main_loop_until_idle();
    EXPECT_EQ(errors.text(), kScriptFailed);
    EXPECT_EQ(first.text_of("typeof where"), "undefined");
    g_main_context_release(nullptr);
}

TEST_F(PageAttachment, RefusesScriptsOfAPopupThatHasClosed) {
    const FakePage opener(main, first.get());
    FakePage popup(main, second.get());
    attach(opener);
    attach(popup);
    g_main_context_acquire(nullptr);
    insert_from_reader("where = 'popup'");
    popup.close();
    run_main_loop_until_idle();
    EXPECT_EQ(errors.text(), kScriptFailed);
    EXPECT_EQ(first.text_of("typeof where"), "undefined");
    g_main_context_release(nullptr);
}

TEST_F(PageAttachment, ReleasesAPageThatHasClosed) {
    static bool was_collected = false;
    JSClassDefinition definition{};
    definition.finalize = [](JSObjectRef) { was_collected = true; };
    {
        const ScriptContext shown;
        shown.text_of("window = globalThis; onAnswer = () => {}");
        const JSClassRef watched = JSClassCreate(&definition);
        JSObjectSetPrototype(shown.get(), shown.global(),
                             JSObjectMake(shown.get(), watched, nullptr));
        JSClassRelease(watched);
        FakePage closed(main, shown.get());
        attach(closed);
        for (int i = 0; i < 3; ++i) deliver({"onAnswer"});
        closed.close();
    }
    EXPECT_EQ(errors.text(), "");
    EXPECT_TRUE(was_collected);
}

TEST_F(PageAttachment, ConsumesTheResources) {
    const FakePage page(main, first.get());
    set_resources("{title: 'h\u00e9'}");
    attach(page);
    EXPECT_EQ(first.text_of("ZYNS.getResources().title"), "h\u00e9");
    EXPECT_EQ(first.text_of("ZYNS.getLocale()"), "en-gb,en;q=0.5");
    EXPECT_STREQ(g_resources, "");
    EXPECT_EQ(KsJS_proxy::resources, "");

    page.show(second.get());
    attach(page);
    EXPECT_EQ(second.text_of("typeof external + typeof ZYNS"), "objectundefined");
}

TEST_F(PageAttachment, EvaluatesTheResourcesAsAnExpression) {
    set_resources("[ZYNS === window.ZYNS, typeof external].join()");
    attach(FakePage(main, first.get()));
    EXPECT_EQ(first.text_of("ZYNS.getResources()"), "true,object");
    EXPECT_EQ(first.text_of("ZYNS.getLocale.toString()"), "function() {return 'en-gb,en;q=0.5'}");
    EXPECT_EQ(errors.text(), "");
}

TEST_F(PageAttachment, KeepsAnExistingNamespace) {
    first.text_of("ZYNS = {own: 1}");
    set_resources("{}");
    attach(FakePage(main, first.get()));
    EXPECT_EQ(first.text_of("Object.keys(ZYNS).join()"), "own,getLocale,getResources");
}

TEST_F(PageAttachment, ReportsResourcesWithASyntaxError) {
    set_resources("{title:");
    attach(FakePage(main, first.get()));
    EXPECT_EQ(errors.text(), kScriptFailed);
    EXPECT_EQ(first.text_of("typeof external + typeof ZYNS"), "objectundefined");
    EXPECT_STREQ(g_resources, "");
}

TEST_F(PageAttachment, LetsScriptsAndAnswersRun) {
    const FakePage page(main, first.get());
    attach(page);
    insert("where = 'first'");
    deliver({"() => { answered = true }"});
    EXPECT_EQ(first.text_of("where + answered"), "firsttrue");
    EXPECT_EQ(host.read_frame(), frame_bytes(33, {}, {}));
}

// No new window object is announced when a page comes back from WebKit's cache.
TEST_F(PageAttachment, FollowsTheFrameToAnotherContext) {
    const FakePage page(main, first.get());
    attach(page);
    page.show(second.get());
    insert("where = 'second'");
    EXPECT_EQ(second.text_of("where"), "second");
    EXPECT_EQ(first.text_of("typeof where"), "undefined");
    EXPECT_EQ(jsContext, second.get());
    EXPECT_EQ(globalObject, second.global());
}

TEST_F(PageAttachment, EndsWhenTheFrameHasNoContext) {
    const FakePage page(main, first.get());
    attach(page);
    page.show(nullptr);
    insert("where = 'nowhere'");
    deliver({"() => { answered = true }"});
    EXPECT_EQ(errors.text(), std::string(kScriptFailed) + kNoCallback);
    EXPECT_TRUE(host.is_quiet());
    EXPECT_EQ(first.text_of("typeof where + typeof answered"), "undefinedundefined");
}

TEST_F(PageAttachment, EndsWhenThePageIsClosed) {
    FakePage page(main, first.get());
    attach(page);
    page.close();
    insert("where = 'nowhere'");
    deliver({"() => { answered = true }"});
    EXPECT_EQ(errors.text(), std::string(kScriptFailed) + kNoCallback);
    EXPECT_TRUE(host.is_quiet());
    EXPECT_EQ(first.text_of("typeof where + typeof answered"), "undefinedundefined");
}

}  // namespace
}  // namespace kestrel::testing
