// A web request of the page, and its validation.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace kestrel {

struct WebRequest {
    std::string url;
    std::string method{};   // "" is GET
    std::string headers{};  // lines of "Name: value"
    std::string body{};
};

struct WebResponse {
    int status = 0;             // 0 without a complete response
    std::string status_text{};  // the server's reason phrase, or the error
    std::string headers{};      // lines of "Name: value"
    std::string body{};
};

// A valid request, or the reason why it is refused.
struct CheckedRequest {
    std::string fault;  // "" for a valid request
    std::string method;
    std::vector<std::pair<std::string, std::string>> headers;
};

// Checks all but the syntax of the URL, and converts the method to upper case. Refuses schemes
// other than http and https, methods and headers that control the connection, and characters that
// would inject further headers.
CheckedRequest check(const WebRequest& request);

// Converts the body from `charset`, or reads it as UTF-8 if the charset is unknown or does not
// match. Invalid UTF-8 and NULs become U+FFFD. A byte order mark is removed.
std::string text_of_body(std::string body, const std::string& charset);

}  // namespace kestrel
