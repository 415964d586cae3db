// A script that arrives while one page is current and would be delivered to another.
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <memory>
#include <semaphore>
#include <string>

#include "tests/support/frame_bytes.h"
#include "tests/support/stderr_capture.h"
#include "tests/support/web_server.h"
#include "tests/webkit/store_fixture.h"

namespace kestrel::testing {
namespace {

std::string content_of(const std::string& path) {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}

class ReplacedPage : public StoreTest {
  protected:
    ReplacedPage() { setenv("KESTREL_TRACE", trace.c_str(), 1); }
    ~ReplacedPage() override {
        release.release();
        unsetenv("KESTREL_TRACE");
    }

    bool has_asked(const std::string& path) const {
        for (const std::string& request : server.requests()) {
            if (request.starts_with("GET " + path + " ")) return true;
        }
        return false;
    }

    const std::string trace = std::string(g_get_home_dir()) + "/trace";
    const StderrCapture captured;  // before the web process starts, which inherits it
    std::counting_semaphore<> release{0};
    WebServer server{[this](const std::string& request) {
        if (request.starts_with("GET /wait ")) release.acquire();
        return WebServer::Saying(
            "HTTP/1.1 200 OK\r\nContent-Type: text/html\r\nConnection: close\r\n\r\n<!doctype "
            "html>");
    }};
    std::unique_ptr<StoreView> popup;
};

TEST_F(ReplacedPage, ScriptIsReportedAndRunsNowhere) {
    host.listen();
    StoreView store;
    webkit_settings_set_javascript_can_open_windows_automatically(
        webkit_web_view_get_settings(store.view()), TRUE);
    g_signal_connect(store.view(), "create",
                     G_CALLBACK(+[](WebKitWebView* opener, WebKitNavigationAction*,
                                    std::unique_ptr<StoreView>* created) {
                         *created = std::make_unique<StoreView>(StoreView::RelatedTo{opener});
                         return GTK_WIDGET((*created)->view());
                     }),
                     &popup);
    store.load_uri(server.url());
    ASSERT_TRUE(host.wait_for(61));

    // The page does not return to the main loop before it has opened the popup.
    store.evaluate(
        "setTimeout(() => { const request = new XMLHttpRequest();"
        "  request.open('GET', '/wait', false); request.send();"
        "  window.open('', 'popup').document.title = 'popup' }, 0)");
    ASSERT_TRUE(run_main_loop_until([this] { return has_asked("/wait"); }));
    host.send(0, {"external.sendAction('ran in ' + window.name)"});
    host.send_bytes(header_bytes(9, 0, 0, 0));
    // The reader has handled the script when it has read what follows.
    ASSERT_TRUE(run_main_loop_until(
        [this] { return content_of(trace).find("\"type\":9,") != std::string::npos; }));
    release.release();

    EXPECT_TRUE(run_main_loop_until([this] {
        return captured.text().find("KsJS_proxy::insertJS: Error calling") != std::string::npos;
    }));
    host.send(0, {"external.sendAction('next ran in ' + window.name)"});
    EXPECT_TRUE(host.wait_for_text(5, "next ran in popup"));
    EXPECT_EQ(host.frames(5).size(), 1U);
}

}  // namespace
}  // namespace kestrel::testing
