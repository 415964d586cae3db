// Popups, which share the web process of their opener. An open popup is the current page.
#include <memory>
#include <vector>

#include "tests/support/stderr_capture.h"
#include "tests/webkit/store_fixture.h"

namespace kestrel::testing {
namespace {

// Views that pages open with window.open, each in a window of its own until its page closes it.
class Popups {
  public:
    explicit Popups(WebKitWebView* opener) { watch(opener); }

    std::size_t open() const { return views_.size(); }

  private:
    void watch(WebKitWebView* opener) {
        webkit_settings_set_javascript_can_open_windows_automatically(
            webkit_web_view_get_settings(opener), TRUE);
        g_signal_connect(opener, "create",
                         G_CALLBACK(+[](WebKitWebView* view, WebKitNavigationAction*,
                                        Popups* self) { return self->create(view); }),
                         this);
    }

    GtkWidget* create(WebKitWebView* opener) {
        views_.push_back(std::make_unique<StoreView>(StoreView::RelatedTo{opener}));
        WebKitWebView* const popup = views_.back()->view();
        g_signal_connect(popup, "close", G_CALLBACK(+[](WebKitWebView* view, Popups* self) {
                             std::erase_if(self->views_, [view](const auto& open) {
                                 return open->view() == view;
                             });
                         }),
                         this);
        watch(popup);
        return GTK_WIDGET(popup);
    }

    std::vector<std::unique_ptr<StoreView>> views_;
};

class Popup : public ConnectedStoreTest {
  protected:
    // Waits until answers and scripts reach the page with this window.name, which is "" for the
    // opener. No event reports that the web process has closed a page.
    void expect_current_page(const std::string& name) {
        host.forget_frames();
        EXPECT_TRUE(run_main_loop_until([&] {
            const std::size_t asked = host.frames(5).size();
            host.send(1, {"(() => external.sendAction(window.name))"});
            return host.wait_for(5, asked + 1) && host.frames(5).back().payload == name + '\0';
        }));
        host.send(0, {"external.sendAction('script in ' + window.name)"});
        EXPECT_TRUE(host.wait_for_text(5, "script in " + name));
    }

    void open(const std::string& script) {
        const std::size_t before = popups.open();
        store.evaluate(script);
        ASSERT_TRUE(run_main_loop_until([&] { return popups.open() == before + 1; }));
    }

    void close(const std::string& script) {
        const std::size_t before = popups.open();
        store.evaluate(script);
        ASSERT_TRUE(run_main_loop_until([&] { return popups.open() == before - 1; }));
    }

    void open_page() {
        open("window.first = window.open('" +
             page_uri("<script>external.sendAction('loaded')</script>") + "', 'first'); 0");
        ASSERT_TRUE(host.wait_for_text(5, "loaded"));
    }

    Popups popups{store.view()};
};

constexpr const char* kOpenEmpty = "window.first = window.open('', 'first'); 0";
constexpr const char* kCloseFirst = "first.close(); 0";

TEST_F(Popup, ReceivesScriptsWhileOpen) {
    open_page();
    expect_current_page("first");
}

TEST_F(Popup, MakesItsOpenerCurrentWhenItCloses) {
    open_page();
    close(kCloseFirst);
    expect_current_page("");
}

TEST_F(Popup, MakesItsOpenerCurrentWhenItClosesEmpty) {
    open(kOpenEmpty);
    store.evaluate("first.document.title = 'empty'");
    close(kCloseFirst);
    expect_current_page("");
}

// The page has had time to replace what script offers.
TEST_F(Popup, ThatClosesLeavesThePageItsMicrotasks) {
    open(kOpenEmpty);
    store.evaluate(
        "first.document.title = 'empty'; calls = 0; order = '';"
        "Event = EventTarget = function() { ++calls };"
        "answer = () => { order += 'a'; Promise.resolve().then(() => { order += 'm' }) }; 0");
    close(kCloseFirst);
    expect_current_page("");
    const std::size_t before = host.frames(33).size();
    for (int i = 0; i < 100; ++i) host.send(1, {"answer"});
    ASSERT_TRUE(host.wait_for(33, before + 100));
    EXPECT_EQ(store.evaluate("order === 'am'.repeat(100)"), "true") << store.evaluate("order");
    EXPECT_EQ(store.evaluate("calls"), "0");
}

TEST_F(Popup, MayOpenAnotherPopup) {
    open(kOpenEmpty);
    store.evaluate("first.document.title = 'empty'");
    open("first.second = first.open('', 'second'); 0");
    store.evaluate("first.second.document.title = 'empty'");
    expect_current_page("second");
    close("first.second.close(); 0");
    expect_current_page("first");
    close(kCloseFirst);
    expect_current_page("");
}

TEST_F(Popup, MayCloseBeforeItsOwnPopup) {
    open(kOpenEmpty);
    store.evaluate("first.document.title = 'empty'");
    open("window.second = first.open('', 'second'); 0");
    store.evaluate("second.document.title = 'empty'");
    close(kCloseFirst);
    expect_current_page("second");
    close("second.close(); 0");
    expect_current_page("");
}

TEST_F(Popup, IsNotCurrentAfterItsOpenerNavigates) {
    open(kOpenEmpty);
    store.evaluate("first.document.title = 'empty'");
    store.load("<title>next</title>");
    expect_current_page("");
}

}  // namespace
}  // namespace kestrel::testing
