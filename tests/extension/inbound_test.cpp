// Messages of the host, from the socket to the page.
#include <memory>
#include <thread>

#include "extension/resources.h"
#include "ipc/webkit_client.h"
#include "tests/extension/page_glue.h"
#include "tests/support/log_recorder.h"

namespace kestrel::testing {
namespace {

// The link's reader thread runs; the main loop runs only where a test says so.
class Inbound : public PageGlueWithPage {
  protected:
    Inbound() {
        clear_log();
        webkit_client::func_array = table_.get();
        reader_ = std::thread([] { webkit_client::recvMessage(); });
    }
    ~Inbound() override {
        host.hang_up();
        reader_.join();
        webkit_client::func_array = nullptr;
        take_resources();
        KsJS_proxy::preloadURL.clear();
    }

    void send_script(std::string_view script) const { host.write(frame_bytes(0, {}, {script})); }
    void send_answer(std::string_view callback) const {
        host.write(frame_bytes(1, {}, {callback}));
    }

    // Returns when the reader has handled all that was sent so far: it logs a type that has no
    // handler.
    void wait_for_reader() {
        const std::string type = std::to_string(++unknown_type_);
        host.write(frame_bytes(unknown_type_, {}, {}));
        EXPECT_TRUE(wait_for_log("Dropped a message of type " + type + ": no handler\n"));
    }

  private:
    std::unique_ptr<webkit_client::InboundHandler[]> table_{KsJS_proxy::getFunctionArray()};
    int unknown_type_ = 100;
    std::thread reader_;
};

TEST_F(Inbound, ScriptWaitsForTheMainLoop) {
    send_script("done = 'by the main loop'");
    wait_for_reader();
    EXPECT_EQ(page.text_of("typeof done"), "undefined");
    run_main_loop_until_idle();
    EXPECT_EQ(page.text_of("done"), "by the main loop");
    EXPECT_EQ(errors.text(), "");
}

TEST_F(Inbound, EmptyScriptIsNotRun) {
    send_script("");
    host.write(frame_bytes(0, {}, {}));
    wait_for_reader();
    run_main_loop_until_idle();
    EXPECT_EQ(errors.text(), "");
}

TEST_F(Inbound, AnswerCallsTheCallbackAndTellsTheHost) {
    page.text_of("onCaps = function() { count = arguments.length }");
    send_answer("onCaps");
    EXPECT_TRUE(run_main_loop_until([&] { return !host.is_quiet(); }));
    EXPECT_EQ(host.read_frame(), frame_bytes(33, {}, {}));
    EXPECT_EQ(page.text_of("count"), "0");
}

TEST_F(Inbound, AjaxAnswerAlwaysHasFiveArguments) {
    page.text_of(
        std::string("called = []; zyns_ajax_complete ="
                    " function() { called.push(Array.from(arguments)) }"));
    host.write(frame_bytes(1, {}, {"zyns_ajax_complete"}));
    host.write(frame_bytes(1, {}, {"zyns_ajax_complete", "a", "b"}));
    host.write(frame_bytes(1, {}, {"zyns_ajax_complete", "a", "b", "c", "d", "e"}));
    host.write(frame_bytes(1, {}, {"zyns_ajax_complete", "a", "b", "c", "d", "e", "f", "g"}));
    wait_for_reader();
    run_main_loop_until_idle();
    EXPECT_EQ(page.text_of("JSON.stringify(called)"),
              R"([["","","","",""],["a","b","","",""],["a","b","c","d","e"],)"
              R"(["a","b","c","d","e"]])");
    for (int i = 0; i < 4; ++i) EXPECT_EQ(host.read_frame(), frame_bytes(33, {}, {}));
    EXPECT_TRUE(host.is_quiet());
}

TEST_F(Inbound, ScriptsAndAnswersKeepTheirOrder) {
    constexpr int kPairs = 200;
    page.text_of("order = []");
    std::string expected;
    for (int i = 0; i < kPairs; ++i) {
        const std::string number = std::to_string(i);
        send_script("order.push('s" + number + "')");
        send_answer("() => order.push('a" + number + "')");
        expected.append("s").append(number).append(",a").append(number).append(",");
    }
    wait_for_reader();
    run_main_loop_until_idle();
    EXPECT_EQ(page.text_of("order.join() + ','"), expected);
    for (int i = 0; i < kPairs; ++i) EXPECT_EQ(host.read_frame(), frame_bytes(33, {}, {}));
    EXPECT_TRUE(host.is_quiet());
}

TEST_F(Inbound, ConfirmsTheUrlAtOnceAndKeepsTheResourcesForTheNextPage) {
    host.write(frame_bytes(34, {}, {"http://example.org/h\u00e9", "{a: 1}"}));
    EXPECT_EQ(host.read_frame(), frame_bytes(35, {}, {"http://example.org/h\u00e9"}));
    EXPECT_EQ(KsJS_proxy::preloadURL, "http://example.org/h\u00e9");
    EXPECT_EQ(take_resources(), "{a: 1}");
    EXPECT_TRUE(host.is_quiet());
}

TEST_F(Inbound, UrlWithoutResourcesClearsThem) {
    set_resources("{old: 1}");
    host.write(frame_bytes(34, {}, {}));
    EXPECT_EQ(host.read_frame(), frame_bytes(35, {}, {""}));
    EXPECT_EQ(take_resources(), "");
}

TEST_F(Inbound, LastResourcesWin) {
    host.write(frame_bytes(34, {}, {"one", "{a: 1}"}));
    host.write(frame_bytes(34, {}, {"two", "{a: 2}"}));
    EXPECT_EQ(host.read_frame(), frame_bytes(35, {}, {"one"}));
    EXPECT_EQ(host.read_frame(), frame_bytes(35, {}, {"two"}));
    EXPECT_EQ(KsJS_proxy::preloadURL, "two");
    EXPECT_EQ(take_resources(), "{a: 2}");
}

TEST_F(Inbound, ConfirmsTheUrlAfterEarlierScriptsHaveRun) {
    send_script("resources = 'still to come'");
    host.write(frame_bytes(34, {}, {"url", "{a: 1}"}));
    wait_for_reader();
    EXPECT_TRUE(host.is_quiet());
    EXPECT_EQ(take_resources(), "");
    run_main_loop_until_idle();
    EXPECT_EQ(host.read_frame(), frame_bytes(35, {}, {"url"}));
    EXPECT_EQ(page.text_of("resources"), "still to come");
    EXPECT_EQ(KsJS_proxy::preloadURL, "url");
    EXPECT_EQ(take_resources(), "{a: 1}");
}

TEST_F(Inbound, ConfirmsUrlsInOrderBehindAScript) {
    send_script("ran = true");
    host.write(frame_bytes(34, {}, {"one", "{a: 1}"}));
    host.write(frame_bytes(34, {}, {"two", "{a: 2}"}));
    wait_for_reader();
    run_main_loop_until_idle();
    EXPECT_EQ(host.read_frame(), frame_bytes(35, {}, {"one"}));
    EXPECT_EQ(host.read_frame(), frame_bytes(35, {}, {"two"}));
    EXPECT_EQ(take_resources(), "{a: 2}");
    host.write(frame_bytes(34, {}, {"three", ""}));
    EXPECT_EQ(host.read_frame(), frame_bytes(35, {}, {"three"}));
}

TEST_F(Inbound, ConfirmsTheUrlWithoutWaitingForAnswers) {
    send_answer("() => 0");
    host.write(frame_bytes(34, {}, {"url", ""}));
    EXPECT_EQ(host.read_frame(), frame_bytes(35, {}, {"url"}));
    run_main_loop_until_idle();
    EXPECT_EQ(host.read_frame(), frame_bytes(33, {}, {}));
}

using ReadyToLoad = PageGlue;

TEST_F(ReadyToLoad, SendsTheUrlUpToItsFirstNul) {
    KsJS_proxy::readyToLoadURL(std::string("url\0rest", 8));
    EXPECT_EQ(host.read_frame(), frame_bytes(35, {}, {"url"}));
}

}  // namespace
}  // namespace kestrel::testing
