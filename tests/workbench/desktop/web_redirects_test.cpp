// Redirected web requests.
#include <gmock/gmock.h>

#include "tests/workbench/desktop/web_answers.h"

namespace kestrel::testing {
namespace {

using ::testing::AllOf;
using ::testing::AnyOf;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::SizeIs;
using ::testing::StartsWith;

TEST(WebRequests, FollowsARedirectWithoutTheBody) {
    const WebServer server([](const std::string& request) {
        return asks_for(request, "/old") ? redirect_to("new") : answer("200 OK", "", "here");
    });
    const WebResponse response =
        response_to({.url = server.url("/old"), .method = "POST", .body = "text"});
    EXPECT_EQ(response.status, 200);
    EXPECT_EQ(response.body, "here");
    EXPECT_THAT(server.requests(),
                ElementsAre(StartsWith("POST /old HTTP/1.1\r\n"),
                            AllOf(StartsWith("GET /new HTTP/1.1\r\n"), EndsWith("\r\n\r\n"))));
}

TEST(WebRequests, ReturnsARedirectOfTheBodyToThePage) {
    const WebServer server(
        [](const std::string&) { return redirect_to("/new", "307 Temporary Redirect"); });
    const WebResponse response =
        response_to({.url = server.url(), .method = "POST", .body = "text"});
    EXPECT_EQ(response.status, 307);
    EXPECT_THAT(response.headers, HasSubstr("\nLocation: /new"));
    EXPECT_THAT(server.requests(), SizeIs(1));
}

TEST(WebRequests, StopsARedirectLoop) {
    const WebServer server([](const std::string&) { return redirect_to("/again"); });
    expect_failure(response_to({.url = server.url()}), "redirect");
    EXPECT_THAT(server.requests(), SizeIs(::testing::Le(22)));
}

TEST(WebRequests, DoesNotFollowARedirectToAnotherScheme) {
    const WebServer server([](const std::string&) { return redirect_to("file:///etc/hostname"); });
    const WebResponse response = response_to({.url = server.url()});
    // libsoup 2.4 returns the redirect itself, libsoup 3 an error.
    EXPECT_THAT(response.status, AnyOf(302, 0));
    EXPECT_EQ(response.body, "");
}

}  // namespace
}  // namespace kestrel::testing
