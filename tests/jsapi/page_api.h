#pragma once

#include <gtest/gtest.h>

#include <string>

#include "extension/KsJS_proxy.h"
#include "tests/support/link_peer.h"
#include "tests/support/script_context.h"
#include "tests/support/stderr_capture.h"

namespace kestrel::testing {

inline constexpr const char* kBreakout =
    "               KsJS_proxy::getStringFromJavascriptRef Breakout Error\n";

// A page with `external`.
class PageApi : public ::testing::Test {
  protected:
    PageApi() { KsJS_proxy::loadJSAPI(page.get(), page.global()); }

    // Runs `script`, whose last call is one of `external`: it raises nothing and is undefined.
    void call(const std::string& script) const {
        JSValueRef exception = nullptr;
        const JSValueRef result = page.evaluate(script, exception);
        ASSERT_NE(result, nullptr) << script << " threw " << page.text_of(exception);
        EXPECT_TRUE(JSValueIsUndefined(page.get(), result)) << script;
    }

    ScriptContext page;
    StderrCapture errors;
};

// The same with a host that listens.
class PageApiWithHost : public PageApi {
  protected:
    LinkPeer host;
};

}  // namespace kestrel::testing
