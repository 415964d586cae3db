// A request as the page words it, and what the page may not word.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace kestrel {

struct WebRequest {
    std::string url;
    std::string method{};   // "" is GET
    std::string headers{};  // one "Name: value" a line
    std::string body{};
};

struct WebResponse {
    int status = 0;             // 0 when no complete answer has come
    std::string status_text{};  // the server's words, or why no answer has come
    std::string headers{};      // one "Name: value" a line
    std::string body{};
};

// A request that may be sent, or why it may not.
struct CheckedRequest {
    std::string fault;  // "" if there is none
    std::string method;
    std::vector<std::pair<std::string, std::string>> headers;
};

// Looks at everything but whether the URL can be parsed. The method is put into capitals. Refused
// are other schemes than http and https, methods and headers that concern the connection and not
// the request, and whatever would end a line early and so become a header of its own.
CheckedRequest check(const WebRequest& request);

// Text in UTF-8 without NULs, whatever the bytes are: as `charset` says, if it is known and the
// bytes agree with it, otherwise UTF-8 with U+FFFD in the place of what is none. A byte order mark
// is left out.
std::string text_of_body(std::string body, const std::string& charset);

}  // namespace kestrel
