#include "tests/workbench/desktop/web_answers.h"

#include <gmock/gmock.h>

#include <utility>
#include <vector>

#include "tests/support/main_loop.h"

namespace kestrel::testing {

using ::testing::HasSubstr;
using ::testing::SizeIs;

std::string answer(const std::string& status, const std::string& headers, const std::string& body) {
    return "HTTP/1.1 " + status +
           "\r\nConnection: close\r\nContent-Length: " + std::to_string(body.size()) + "\r\n" +
           headers + "\r\n" + body;
}

std::string redirect_to(const std::string& location, const std::string& status) {
    return answer(status, "Location: " + location + "\r\n", "");
}

bool asks_for(const std::string& request, const std::string& path) {
    return request.find(" " + path + " HTTP/1.1\r\n") != std::string::npos;
}

WebResponse response_to(const WebRequest& request, WebLimits limits) {
    WebRequests requests(limits);
    std::vector<WebResponse> responses;
    requests.send(request, [&](WebResponse response) { responses.push_back(std::move(response)); });
    EXPECT_THAT(responses, SizeIs(0)) << "answered inside the call";
    EXPECT_TRUE(run_main_loop_until([&] { return !responses.empty(); }));
    run_main_loop_until_idle();
    EXPECT_THAT(responses, SizeIs(1));
    return responses.empty() ? WebResponse{} : responses.front();
}

void expect_failure(const WebResponse& response, const std::string& why) {
    EXPECT_EQ(response.status, 0);
    EXPECT_THAT(response.status_text, HasSubstr(why));
    EXPECT_EQ(response.headers, "");
    EXPECT_EQ(response.body, "");
}

}  // namespace kestrel::testing
