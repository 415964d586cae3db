// Pages whose policies forbid or watch script made from text: they do not apply to the host, which
// is trusted.
#include <algorithm>
#include <string>

#include "tests/support/web_server.h"
#include "tests/webkit/store_fixture.h"

namespace kestrel::testing {
namespace {

enum class Place { header, meta };

struct Policy {
    const char* name;
    const char* text;
    Place place;

    friend std::ostream& operator<<(std::ostream& stream, const Policy& policy) {
        return stream << policy.name;
    }
};

class ContentPolicy : public ConnectedStoreTest, public ::testing::WithParamInterface<Policy> {
  protected:
    // Loads a page with the policy and the resources, which counts calls of its policies.
    void SetUp() override {
        ConnectedStoreTest::SetUp();
        host.send(34, {server.url(), "{greeting: 'hello'}"});
        ASSERT_TRUE(host.wait_for(35));
        store.load_uri(server.url());
        ASSERT_EQ(store.evaluate("document.title"), "policy");
        store.evaluate(
            "asked = violations = 0;"
            "document.addEventListener('securitypolicyviolation', () => { ++asked; ++violations });"
            "if (window.trustedTypes)"
            "  trustedTypes.createPolicy('default', {createScript: s => { ++asked; return s }}); "
            "0");
    }

    static std::string page() {
        const std::string policy = GetParam().text;
        const bool is_header = GetParam().place == Place::header;
        return "HTTP/1.1 200 OK\r\nContent-Type: text/html\r\nConnection: close\r\n" +
               (is_header ? "Content-Security-Policy: " + policy + "; report-uri /report\r\n"
                          : std::string()) +
               "\r\n<!doctype html>" +
               (is_header
                    ? std::string()
                    : "<meta http-equiv=Content-Security-Policy content=\"" + policy + "\">") +
               "<title>policy</title>";
    }

    // Violations are reported asynchronously, in order: a deliberate one is reported last.
    void expect_no_report() {
        store.evaluate("before = asked; try { eval('1') } catch {} 0");
        EXPECT_TRUE(store.wait_for("asked > before"));
        EXPECT_EQ(store.evaluate("before"), "0");
        const int expected =
            GetParam().place == Place::header && store.evaluate("violations") != "0";
        EXPECT_TRUE(run_main_loop_until([&] { return reports() >= expected; }));
        EXPECT_EQ(reports(), expected);
    }

    std::ptrdiff_t reports() const {
        return std::ranges::count_if(server.requests(), [](const std::string& request) {
            return request.starts_with("POST /report");
        });
    }

    WebServer server{[](const std::string&) { return WebServer::Saying(page()); }};
};

TEST_P(ContentPolicy, DoesNotBlockResources) {
    EXPECT_EQ(store.evaluate("ZYNS.getResources().greeting"), "hello");
    expect_no_report();
}

TEST_P(ContentPolicy, DoesNotBlockScripts) {
    host.send(0, {"const title = 'script'; document.title = title"});
    EXPECT_TRUE(store.wait_for("document.title === 'script'"));
    expect_no_report();
}

TEST_P(ContentPolicy, DoesNotBlockAnswers) {
    store.evaluate("answers = 0; answer = () => { ++answers }; 0");
    for (int i = 0; i < 5; ++i) host.send(1, {"answer"});
    host.send(1, {"(() => (() => answer())())"});
    ASSERT_TRUE(host.wait_for(33, 6));
    EXPECT_EQ(store.evaluate("answers"), "6");
    expect_no_report();
}

INSTANTIATE_TEST_SUITE_P(
    Policies, ContentPolicy,
    ::testing::Values(
        Policy{"HeaderForbidsScripts", "script-src 'none'", Place::header},
        Policy{"HeaderForbidsAll", "default-src 'none'", Place::header},
        Policy{"HeaderForbidsEval", "script-src 'self' 'unsafe-inline'", Place::header},
        Policy{"HeaderTrustsTypes", "require-trusted-types-for 'script'", Place::header},
        Policy{"HeaderTrustsTypesAndForbidsEval",
               "require-trusted-types-for 'script'; script-src 'none'", Place::header},
        Policy{"MetaForbidsScripts", "script-src 'none'", Place::meta},
        Policy{"MetaForbidsAll", "default-src 'none'", Place::meta},
        Policy{"MetaAllowsANonce", "script-src 'nonce-a'", Place::meta},
        Policy{"MetaTrustsTypes", "require-trusted-types-for 'script'", Place::meta}),
    [](const auto& policy) { return policy.param.name; });

}  // namespace
}  // namespace kestrel::testing
