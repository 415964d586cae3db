// Messages of the host in a real page.
#include "tests/support/stderr_capture.h"
#include "tests/webkit/store_fixture.h"

namespace kestrel::testing {
namespace {

using Inbound = ConnectedStoreTest;

TEST_F(Inbound, RunsAScript) {
    host.send(0, {"document.title = 'set by the host'"});
    EXPECT_TRUE(store.wait_for("document.title === 'set by the host'"));
}

TEST_F(Inbound, CallsACallbackAndConfirmsIt) {
    store.evaluate("window.onCaps = (...given) => { window.given = given.length }");
    host.send(1, {"onCaps"});
    ASSERT_TRUE(host.wait_for(33));
    EXPECT_EQ(host.frames(33)[0].payload, "");
    EXPECT_EQ(store.evaluate("window.given"), "0");
}

TEST_F(Inbound, CallsTheAjaxCompletionWithFiveArguments) {
    store.evaluate("window.zyns_ajax_complete = (...given) => { window.given = given.join('|') }");
    host.send(1, {"zyns_ajax_complete", "1", "2", "3", "4", "5"});
    ASSERT_TRUE(host.wait_for(33));
    EXPECT_EQ(store.evaluate("window.given"), "1|2|3|4|5");
}

TEST_F(Inbound, RunsScriptsAndAnswersInOrder) {
    store.evaluate("window.order = ''; window.answer = () => { order += 'a' }");
    for (int i = 0; i < 50; ++i) {
        host.send(0, {"order += 's'"});
        host.send(1, {"answer"});
    }
    ASSERT_TRUE(host.wait_for(33, 50));
    EXPECT_EQ(store.evaluate("order === 'sa'.repeat(50)"), "true");
}

TEST_F(Inbound, RunsScriptsBeforeItConfirmsResources) {
    for (int i = 0; i < 20; ++i) {
        host.send(0, {"external.sendAction(document.title)"});
        host.send(34, {"next", "{}"});
    }
    ASSERT_TRUE(host.wait_for(35, 20));
    const auto& frames = host.frames();
    for (std::size_t i = 1; i < frames.size(); i += 2) {
        EXPECT_EQ(frames[i].payload, std::string("store") + '\0');
        EXPECT_EQ(frames[i + 1].type, 35);
    }
}

TEST_F(Inbound, SurvivesScriptsThatChangeAnAnimatedPage) {
    store.load(
        "<body><div id=list></div><script>"
        "let turn = 0;"
        "(function animate() {"
        "  list.style.transform = `rotate(${turn++}deg)`;"
        "  list.append(document.createElement('p'));"
        "  if (list.childElementCount > 50) list.replaceChildren();"
        "  requestAnimationFrame(animate);"
        "})();</script>");
    for (int i = 0; i < 500; ++i) {
        host.send(0, {"for (let n = 0; n < 20; ++n) {"
                      "  const added = document.createElement('div');"
                      "  added.innerHTML = '<b>text</b>'.repeat(10);"
                      "  document.body.append(added); added.offsetHeight; added.remove();"
                      "}"
                      "window.runs = (window.runs || 0) + 1"});
    }
    EXPECT_TRUE(store.wait_for("window.runs === 500"));
}

TEST_F(Inbound, IgnoresAnAnswerAfterNavigation) {
    store.evaluate("window.onlyHere = () => {}");
    store.load("<title>next</title>");
    host.send(1, {"onlyHere"});
    host.send(0, {"document.title = 'still alive'"});
    EXPECT_TRUE(store.wait_for("document.title === 'still alive'"));
    EXPECT_TRUE(host.frames(33).empty());
}

TEST_F(Inbound, UsesThePreviousPageWhenAPageCloses) {
    {
        StoreView second(StoreView::RelatedTo{store.view()});
        second.load("<title>second</title>");
        host.send(0, {"document.title = 'reached'"});
        ASSERT_TRUE(second.wait_for("document.title === 'reached'"));
    }
    // No event reports that the web process has closed the page: repeat until the script has run.
    EXPECT_TRUE(run_main_loop_until([&] {
        host.send(0, {"document.title = 'first again'"});
        return store.evaluate("document.title") == "first again";
    }));
}

TEST_F(Inbound, RunsScriptsInAPageOfTheBackForwardCache) {
    store.load("<title>first</title>");
    store.evaluate("window.kept = true");
    store.load("<title>second</title>");
    store.go_back();
    ASSERT_EQ(store.evaluate("window.kept"), "true") << "the page did not come from the cache";
    host.send(0, {"document.title = 'reached'"});
    EXPECT_TRUE(store.wait_for("document.title === 'reached'"));
}

// The page has had time to replace what script offers.
TEST_F(Inbound, RunsMicrotasksOfAnAnswerBeforeTheNextOneAfterGoingBack) {
    store.load("<title>first</title>");
    store.evaluate(
        "kept = true; calls = 0; order = ''; Event = EventTarget = function() { ++calls };"
        "answer = () => { order += 'a'; Promise.resolve().then(() => { order += 'm' }) }; 0");
    store.load("<title>second</title>");
    store.go_back();
    ASSERT_EQ(store.evaluate("window.kept"), "true") << "the page did not come from the cache";
    for (int i = 0; i < 100; ++i) host.send(1, {"answer"});
    ASSERT_TRUE(host.wait_for(33, 100));
    EXPECT_EQ(store.evaluate("order === 'am'.repeat(100)"), "true") << store.evaluate("order");
    EXPECT_EQ(store.evaluate("calls"), "0");
}

}  // namespace
}  // namespace kestrel::testing
