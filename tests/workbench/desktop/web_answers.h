// What the web server of a test says, and what comes of it at the page's end.
#pragma once

#include <string>

#include "tests/support/web_server.h"
#include "workbench/desktop/web_requests.h"

namespace kestrel::testing {

// An answer with these lines of headers, each with its CR and LF, and this body.
std::string answer(const std::string& status, const std::string& headers, const std::string& body);

std::string redirect_to(const std::string& location, const std::string& status = "302 Found");

// A server that has heard the request, and says nothing.
inline const WebServer::Saying kSilence("", false);

bool asks_for(const std::string& request, const std::string& path);

// Sends the request, and runs the main loop until it has been answered, once.
WebResponse response_to(const WebRequest& request, WebLimits limits = {});

// An error of the connection, as opposed to one that the server tells.
void expect_failure(const WebResponse& response, const std::string& why);

}  // namespace kestrel::testing
