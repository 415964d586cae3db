// Responses of a test's web server, and the results that the page gets.
#pragma once

#include <string>

#include "tests/support/web_server.h"
#include "workbench/desktop/web_requests.h"

namespace kestrel::testing {

// A response with these header lines, each with CR LF, and this body.
std::string answer(const std::string& status, const std::string& headers, const std::string& body);

std::string redirect_to(const std::string& location, const std::string& status = "302 Found");

// The server reads the request and never responds.
inline const WebServer::Saying kSilence("", false);

bool asks_for(const std::string& request, const std::string& path);

// Sends the request and runs the main loop until its callback has been called, once.
WebResponse response_to(const WebRequest& request, WebLimits limits = {});

// A connection error, as opposed to an error response.
void expect_failure(const WebResponse& response, const std::string& why);

}  // namespace kestrel::testing
