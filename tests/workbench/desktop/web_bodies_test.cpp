// The length and decoding of request and response bodies.
#include <gio/gio.h>
#include <gmock/gmock.h>

#include "tests/workbench/desktop/web_answers.h"
#include "workbench/desktop/glib_handles.h"

namespace kestrel::testing {
namespace {

using ::testing::EndsWith;
using ::testing::SizeIs;

std::string compressed(std::string text) {
    const ObjectHandle<GZlibCompressor> zip(
        g_zlib_compressor_new(G_ZLIB_COMPRESSOR_FORMAT_GZIP, 9));
    std::string bytes(text.size(), '\0');
    gsize read = 0;
    gsize written = 0;
    EXPECT_EQ(g_converter_convert(reinterpret_cast<GConverter*>(zip.get()), text.data(),
                                  text.size(), bytes.data(), bytes.size(), G_CONVERTER_INPUT_AT_END,
                                  &read, &written, nullptr),
              G_CONVERTER_FINISHED);
    bytes.resize(written);
    return bytes;
}

TEST(WebRequests, ReceivesTenMegabytes) {
    std::string body(10'000'000, ' ');
    for (std::size_t index = 0; index < body.size(); ++index) {
        body[index] = static_cast<char>('a' + index % 23);
    }
    const WebServer server([&](const std::string&) { return answer("200 OK", "", body); });
    const WebResponse response = response_to({.url = server.url()});
    EXPECT_EQ(response.status, 200);
    EXPECT_TRUE(response.body == body);
}

TEST(WebRequests, SendsTenMegabytes) {
    const std::string body(10'000'000, 'b');
    const WebServer server([](const std::string&) { return answer("200 OK", "", ""); });
    EXPECT_EQ(response_to({.url = server.url(), .method = "POST", .body = body}).status, 200);
    EXPECT_TRUE(server.requests().front().ends_with("\r\n\r\n" + body));
}

TEST(WebRequests, AcceptsABodyUpToTheLimit) {
    const WebServer server([](const std::string& request) {
        return answer("200 OK", "",
                      std::string(asks_for(request, "/long") ? 100'001 : 100'000, 'x'));
    });
    const WebLimits limits{.body = 100'000};
    EXPECT_THAT(response_to({.url = server.url("/")}, limits).body, SizeIs(100'000));
    expect_failure(response_to({.url = server.url("/long")}, limits),
                   "the answer is longer than 100000 bytes");
}

TEST(WebRequests, StopsReadingAnEndlessBody) {
    const WebServer server(
        [](const std::string&) { return "HTTP/1.1 200 OK\r\n\r\n" + std::string(20 << 20, 'x'); });
    expect_failure(response_to({.url = server.url()}), "the answer is longer than 16777216 bytes");
}

TEST(WebRequests, LimitsTheDecompressedBody) {
    const WebServer server([](const std::string& request) {
        return answer("200 OK", "Content-Encoding: gzip\r\n",
                      compressed(std::string(asks_for(request, "/long") ? 5'000'000 : 5'000, 'x')));
    });
    const WebLimits limits{.body = 100'000};
    EXPECT_EQ(response_to({.url = server.url()}, limits).body, std::string(5'000, 'x'));
    expect_failure(response_to({.url = server.url("/long")}, limits),
                   "the answer is longer than 100000 bytes");
}

TEST(WebRequests, DecodesTheBodyFromItsCharset) {
    const WebServer server([](const std::string& request) {
        const std::string charset = asks_for(request, "/latin") ? "; charset=\"iso-8859-1\"" : "";
        return answer("200 OK", "Content-Type: text/plain" + charset + "\r\nX: \xfc\r\n",
                      "Gr\xfc\xdf");
    });
    EXPECT_EQ(response_to({.url = server.url("/latin")}).body, "Grüß");
    const WebResponse response = response_to({.url = server.url("/")});
    EXPECT_EQ(response.body, "Gr\ufffd\ufffd");
    EXPECT_THAT(response.headers, EndsWith("\nX: \ufffd"));
}

}  // namespace
}  // namespace kestrel::testing
