// Failing web requests: the page gets the reason.
#include <gmock/gmock.h>

#include <chrono>

#include "tests/workbench/desktop/web_answers.h"

namespace kestrel::testing {
namespace {

using namespace std::chrono_literals;
using namespace std::string_literals;
using ::testing::SizeIs;

TEST(WebRequests, ReportsARefusedConnection) {
    std::string url;
    {
        const WebServer server([](const std::string&) { return kSilence; });
        url = server.url();
    }
    expect_failure(response_to({.url = url}), "onnect");
}

TEST(WebRequests, ReportsAnUnknownHost) {
    const WebResponse response = response_to({.url = "http://no-such-host.invalid/"});
    expect_failure(response, "no-such-host.invalid");
}

TEST(WebRequests, ReportsATimeout) {
    const WebServer server([](const std::string&) { return kSilence; });
    expect_failure(response_to({.url = server.url()}, {.time = 100ms}),
                   "there was no whole answer within 100 ms");
}

TEST(WebRequests, ReportsATimeoutWithinTheBody) {
    const WebServer server([](const std::string&) {
        return WebServer::Saying("HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nhalf", false);
    });
    expect_failure(response_to({.url = server.url()}, {.time = 200ms}),
                   "there was no whole answer within 200 ms");
}

TEST(WebRequests, ReportsATimeoutAfterARedirect) {
    const WebServer server([](const std::string& request) {
        return asks_for(request, "/") ? redirect_to("/next") : kSilence;
    });
    expect_failure(response_to({.url = server.url()}, {.time = 200ms}),
                   "there was no whole answer within 200 ms");
    EXPECT_THAT(server.requests(), SizeIs(2));
}

TEST(WebRequests, ReportsAConnectionClosedWithinTheBody) {
    const WebServer server(
        [](const std::string&) { return "HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nhalf"s; });
    const WebResponse response = response_to({.url = server.url()});
    EXPECT_NE(response.status_text, "");
    expect_failure(response, "");
}

TEST(WebRequests, ReportsAnInvalidHttpResponse) {
    const WebServer server([](const std::string&) { return "SSH-2.0-server\r\n"s; });
    const WebResponse response = response_to({.url = server.url()});
    EXPECT_NE(response.status_text, "");
    expect_failure(response, "");
}

TEST(WebRequests, ReportsInvalidRequests) {
    const WebServer server([](const std::string&) { return answer("200 OK", "", ""); });
    expect_failure(response_to({.url = "ftp://127.0.0.1/"}), "only http and https are relayed");
    expect_failure(response_to({.url = "http://[::1"}), "this is not a URL: http://[::1");
    expect_failure(response_to({.url = server.url(), .method = "GET X"}), "this is not a method");
    expect_failure(response_to({.url = server.url(), .headers = "X: a\rY: b"}),
                   "holds a control character");
    EXPECT_THAT(server.requests(), SizeIs(0));
}

}  // namespace
}  // namespace kestrel::testing
