#include "workbench/desktop/web_requests.h"

#include <gmock/gmock.h>

#include <memory>

#include "tests/support/main_loop.h"
#include "tests/workbench/desktop/web_answers.h"

namespace kestrel::testing {
namespace {

using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::SizeIs;
using ::testing::StartsWith;

TEST(WebRequests, SendsTheRequestAndReturnsTheResponse) {
    const WebServer server([](const std::string&) {
        return answer("201 Made it", "X-One: 1\r\nX-Two: a: b\r\n", "Grüß Gott");
    });
    const WebResponse response =
        response_to({.url = server.url("/items?q=%20#fragment"),
                     .method = "put",
                     .headers = "Content-Type: application/json\nX-Store: sample",
                     .body = R"({"name": "Grüß"})"});
    EXPECT_EQ(response.status, 201);
    EXPECT_EQ(response.status_text, "Made it");
    EXPECT_EQ(response.headers, "Connection: close\nContent-Length: 11\nX-One: 1\nX-Two: a: b");
    EXPECT_EQ(response.body, "Grüß Gott");

    ASSERT_THAT(server.requests(), SizeIs(1));
    EXPECT_THAT(server.requests().front(),
                AllOf(StartsWith("PUT /items?q=%20 HTTP/1.1\r\n"),
                      HasSubstr("\r\nContent-Type: application/json\r\n"),
                      HasSubstr("\r\nX-Store: sample\r\n"), HasSubstr("\r\nContent-Length: 18\r\n"),
                      HasSubstr("\r\nUser-Agent: kestrel-workbench/"),
                      EndsWith("\r\n\r\n{\"name\": \"Grüß\"}")));
}

TEST(WebRequests, AddsOnlyMissingHeaders) {
    const WebServer server([](const std::string&) { return answer("204 No Content", "", ""); });
    response_to({.url = server.url(), .method = "POST", .body = "text"});
    response_to({.url = server.url(), .method = "POST", .headers = "user-agent: mine"});
    response_to({.url = server.url("/ü"), .headers = "X-Twice: 1\nX-Twice: 2"});
    ASSERT_THAT(server.requests(), SizeIs(3));
    EXPECT_THAT(server.requests()[0], HasSubstr("\r\nContent-Type: text/plain;charset=UTF-8\r\n"));
    EXPECT_THAT(server.requests()[1],
                AllOf(HasSubstr("\r\nUser-Agent: mine\r\n"), HasSubstr("\r\nContent-Length: 0\r\n"),
                      Not(HasSubstr("Content-Type")), Not(HasSubstr("kestrel"))));
    EXPECT_THAT(server.requests()[2],
                AllOf(StartsWith("GET /%C3%BC HTTP/1.1\r\n"), HasSubstr("X-Twice: 1\r\nX-Twice: 2"),
                      Not(HasSubstr("Content-Type"))));
}

TEST(WebRequests, ReturnsServerErrors) {
    const WebServer server(
        [](const std::string&) { return answer("404 Not Found", "", "no such page"); });
    const WebResponse response = response_to({.url = server.url()});
    EXPECT_EQ(response.status, 404);
    EXPECT_EQ(response.status_text, "Not Found");
    EXPECT_EQ(response.body, "no such page");
}

TEST(WebRequests, KeepsCookies) {
    const WebServer server(
        [](const std::string&) { return answer("200 OK", "Set-Cookie: visit=1; Path=/\r\n", ""); });
    WebRequests requests;
    for (std::size_t count = 1; count <= 2; ++count) {
        bool is_done = false;
        requests.send({.url = server.url()}, [&](const WebResponse&) { is_done = true; });
        ASSERT_TRUE(run_main_loop_until([&] { return is_done; }));
    }
    EXPECT_THAT(server.requests(),
                ElementsAre(Not(HasSubstr("Cookie")), HasSubstr("\r\nCookie: visit=1\r\n")));
}

TEST(WebRequests, HandlesManyAtOnce) {
    const WebServer server([](const std::string& request) {
        return answer("200 OK", "", request.substr(0, request.find(" HTTP")));
    });
    WebRequests requests;
    std::vector<std::string> bodies(40);
    std::size_t count = 0;
    for (std::size_t index = 0; index < bodies.size(); ++index) {
        requests.send({.url = server.url("/" + std::to_string(index))},
                      [&, index](const WebResponse& response) {
                          bodies[index] = response.body;
                          ++count;
                      });
    }
    EXPECT_TRUE(run_main_loop_until([&] { return count == bodies.size(); }));
    for (std::size_t index = 0; index < bodies.size(); ++index) {
        EXPECT_EQ(bodies[index], "GET /" + std::to_string(index));
    }
}

TEST(WebRequests, CallsNothingAfterDestruction) {
    const WebServer server([](const std::string& request) -> WebServer::Saying {
        if (asks_for(request, "/silent")) return kSilence;
        return answer("200 OK", "", "");
    });
    int calls = 0;
    {
        WebRequests requests;
        for (const char* path : {"/silent", "/"}) {
            requests.send({.url = server.url(path)}, [&](const WebResponse&) { ++calls; });
        }
        requests.send({.url = "nonsense"}, [&](const WebResponse&) { ++calls; });
        ASSERT_TRUE(run_main_loop_until([&] { return calls == 2; }));
        requests.send({.url = server.url()}, [&](const WebResponse&) { ++calls; });
        requests.send({.url = "nonsense"}, [&](const WebResponse&) { ++calls; });
    }
    run_main_loop_until_idle();
    EXPECT_EQ(calls, 2);
}

TEST(WebRequests, MayBeDestroyedInTheCallback) {
    const WebServer server([](const std::string& request) {
        return asks_for(request, "/") ? answer("200 OK", "", "body") : kSilence;
    });
    auto requests = std::make_unique<WebRequests>();
    std::string body;
    requests->send({.url = server.url()}, [&](const WebResponse& response) {
        body = response.body;
        requests.reset();
    });
    requests->send({.url = server.url("/silent")}, [&](const WebResponse&) { FAIL() << "called"; });
    EXPECT_TRUE(run_main_loop_until([&] { return !body.empty(); }));
    run_main_loop_until_idle();
}

}  // namespace
}  // namespace kestrel::testing
