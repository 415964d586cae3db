#include "workbench/desktop/web_request.h"

#include <glib.h>

#include <algorithm>
#include <array>
#include <span>

#include "workbench/desktop/glib_handles.h"
#include "workbench/desktop/valid_utf8.h"

namespace kestrel {
namespace {

constexpr std::array<std::string_view, 2> kSchemes = {"http", "https"};

// They open tunnels, or reveal headers that the page may not see.
constexpr std::array<std::string_view, 3> kForbiddenMethods = {"CONNECT", "TRACE", "TRACK"};

// They control the length and the destination of a request.
constexpr std::array<std::string_view, 9> kForbiddenHeaders = {
    "connection", "content-length",    "expect", "host", "keep-alive", "te", "trailer",
    "upgrade",    "transfer-encoding",
};

constexpr std::string_view kBlanks = " \t";
constexpr std::string_view kByteOrderMark = "\xef\xbb\xbf";

std::string in_case(std::string_view text, char (*convert)(char)) {
    std::string result(text);
    std::ranges::transform(result, result.begin(), convert);
    return result;
}

bool is_one_of(std::string_view text, std::span<const std::string_view> list) {
    return std::ranges::find(list, text) != list.end();
}

bool is_token(std::string_view text) {
    return !text.empty() && std::ranges::all_of(text, [](char c) {
        return g_ascii_isalnum(c) != FALSE ||
               std::string_view("!#$%&'*+-.^_`|~").find(c) != std::string_view::npos;
    });
}

bool is_control(char c) { return g_ascii_iscntrl(c) != FALSE; }

std::string_view without_blanks(std::string_view text) {
    const std::size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos) return "";
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

std::string fault_of_url(const std::string& url) {
    if (std::ranges::any_of(url, [](char c) { return c == ' ' || is_control(c); })) {
        return "the URL holds a blank or a control character";
    }
    const char* const scheme = g_uri_peek_scheme(url.c_str());
    if (scheme == nullptr) return "this is not a URL: " + url;
    if (!is_one_of(scheme, kSchemes)) {
        return "only http and https are relayed, not " + std::string(scheme);
    }
    return "";
}

std::string fault_of_method(const std::string& method) {
    if (is_token(method) && !is_one_of(method, kForbiddenMethods)) return "";
    return "this is not a method that is relayed: " + method;
}

// Adds the line's header to `headers`; returns the fault of an invalid one.
std::string take_header(std::string_view line,
                        std::vector<std::pair<std::string, std::string>>& headers) {
    const std::size_t colon = line.find(':');
    const std::string_view name = line.substr(0, colon);
    if (colon == std::string_view::npos || !is_token(name)) {
        return "this is not a header, \"Name: value\": " + std::string(line);
    }
    if (is_one_of(in_case(name, g_ascii_tolower), kForbiddenHeaders)) {
        return "this header is not for the page to set: " + std::string(name);
    }
    const std::string_view value = without_blanks(line.substr(colon + 1));
    if (std::ranges::any_of(value, [](char c) { return c != '\t' && is_control(c); })) {
        return "this header's value holds a control character: " + std::string(name);
    }
    headers.emplace_back(name, value);
    return "";
}

}  // namespace

CheckedRequest check(const WebRequest& request) {
    CheckedRequest checked;
    checked.method = request.method.empty() ? "GET" : in_case(request.method, g_ascii_toupper);
    checked.fault = fault_of_url(request.url);
    if (checked.fault.empty()) checked.fault = fault_of_method(checked.method);

    std::string_view rest = request.headers;
    while (checked.fault.empty() && !rest.empty()) {
        const std::size_t end = std::min(rest.find('\n'), rest.size());
        std::string_view line = rest.substr(0, end);
        rest.remove_prefix(std::min(end + 1, rest.size()));
        if (line.ends_with('\r')) line.remove_suffix(1);
        if (!line.empty()) checked.fault = take_header(line, checked.headers);
    }
    return checked;
}

std::string text_of_body(std::string body, const std::string& charset) {
    gsize size = 0;
    const GlibText converted(charset.empty()
                                 ? nullptr
                                 : g_convert(body.data(), static_cast<gssize>(body.size()), "UTF-8",
                                             charset.c_str(), nullptr, &size, nullptr));
    if (converted) body.assign(converted.get(), size);
    if (g_utf8_validate_len(body.data(), body.size(), nullptr) == FALSE) body = valid_utf8(body);
    if (body.starts_with(kByteOrderMark)) body.erase(0, kByteOrderMark.size());
    return body;
}

}  // namespace kestrel
