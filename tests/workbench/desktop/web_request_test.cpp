#include "workbench/desktop/web_request.h"

#include <gmock/gmock.h>

namespace kestrel::testing {
namespace {

using namespace std::string_literals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;

std::string fault_of_headers(const std::string& headers) {
    return check({.url = "http://host/", .headers = headers}).fault;
}

TEST(WebRequest, ParsesOneHeaderPerLine) {
    const CheckedRequest checked = check(
        {.url = "https://host/",
         .method = "Post",
         .headers =
             "Accept: text/plain\r\n\nX-Empty:\nX-Blanks: \t a: b \t \nX-Twice: 1\nX-Twice: 2"});
    EXPECT_EQ(checked.fault, "");
    EXPECT_EQ(checked.method, "POST");
    EXPECT_THAT(checked.headers,
                ElementsAre(Pair("Accept", "text/plain"), Pair("X-Empty", ""),
                            Pair("X-Blanks", "a: b"), Pair("X-Twice", "1"), Pair("X-Twice", "2")));
}

TEST(WebRequest, DefaultsToGetWithoutHeaders) {
    const CheckedRequest checked = check({.url = "HTTP://host/"});
    EXPECT_EQ(checked.fault, "");
    EXPECT_EQ(checked.method, "GET");
    EXPECT_THAT(checked.headers, IsEmpty());
}

TEST(WebRequest, RejectsOtherSchemes) {
    const auto fault = [](const std::string& url) { return check({.url = url}).fault; };
    EXPECT_EQ(fault(""), "this is not a URL: ");
    EXPECT_EQ(fault("/path"), "this is not a URL: /path");
    EXPECT_EQ(fault("file:///etc/passwd"), "only http and https are relayed, not file");
    EXPECT_EQ(fault("DATA:,x"), "only http and https are relayed, not data");
    for (const char* url : {"http://host/ HTTP/1.1\r\nX: y", "http://host/a b", "http://host/\x7f",
                            " http://host/", "http://host/\n"}) {
        EXPECT_EQ(fault(url), "the URL holds a blank or a control character") << url;
    }
}

TEST(WebRequest, RejectsMethodsOfTheConnection) {
    const auto fault = [](const std::string& method) {
        return check({.url = "http://host/", .method = method}).fault;
    };
    EXPECT_EQ(fault("PROPFIND"), "");
    for (const char* method : {"CONNECT", "TRACE", "TRACK", "G T", "GET\r\nX:", "GÉT", "GET/"}) {
        EXPECT_EQ(fault(method), "this is not a method that is relayed: "s + method);
    }
    EXPECT_EQ(fault("connect"), "this is not a method that is relayed: CONNECT");
}

TEST(WebRequest, RejectsMalformedHeaders) {
    for (const char* line : {"no colon", ": no name", "X y: blank in the name", " X: folded",
                             "X : blank behind the name", "Ä: not ASCII"}) {
        EXPECT_EQ(fault_of_headers("Accept: */*\n"s + line),
                  "this is not a header, \"Name: value\": "s + line);
    }
}

TEST(WebRequest, RejectsControlCharactersInHeaders) {
    const std::string fault = "this header's value holds a control character: X";
    EXPECT_EQ(fault_of_headers("X: a\rHost: elsewhere"), fault);
    EXPECT_EQ(fault_of_headers("X: a\r\r\nY: b"), fault);
    EXPECT_EQ(fault_of_headers("X: a\0b"s), fault);
    EXPECT_EQ(fault_of_headers("X: a\x7f"), fault);
    EXPECT_EQ(fault_of_headers("X: a\tb"), "");
}

TEST(WebRequest, RejectsHeadersOfTheConnection) {
    for (const char* name : {"Connection", "content-length", "EXPECT", "Host", "Keep-Alive", "TE",
                             "Trailer", "Upgrade", "Transfer-Encoding"}) {
        EXPECT_EQ(fault_of_headers(name + ": 1"s),
                  "this header is not for the page to set: "s + name);
    }
}

TEST(BodyText, IsDecodedFromItsCharset) {
    EXPECT_EQ(text_of_body("Gr\xfc\xdf Gott", "ISO-8859-1"), "Grüß Gott");
    EXPECT_EQ(text_of_body("\xff\xfeG\0\xfc\0"s, "utf-16"), "Gü");
    EXPECT_EQ(text_of_body("Grüß Gott", "utf-8"), "Grüß Gott");
}

TEST(BodyText, IsValidUtf8WithoutNuls) {
    EXPECT_EQ(text_of_body("", ""), "");
    EXPECT_EQ(text_of_body("", "utf-8"), "");
    EXPECT_EQ(text_of_body("Grüß Gott", ""), "Grüß Gott");
    EXPECT_EQ(text_of_body("a\xff"
                           "b\0c"s,
                           ""),
              "a\ufffdb\ufffdc");
    EXPECT_EQ(text_of_body("a\xff", "utf-8"), "a\ufffd");
    EXPECT_EQ(text_of_body("Grüß", "x-unknown"), "Grüß");
    EXPECT_EQ(text_of_body("\xef\xbb\xbf{}", ""), "{}");
}

}  // namespace
}  // namespace kestrel::testing
