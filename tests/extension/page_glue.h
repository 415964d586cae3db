#pragma once

#include <gtest/gtest.h>

#include <array>
#include <string>

#include "extension/KsJS_proxy.h"
#include "extension/page_globals.h"
#include "tests/support/link_peer.h"
#include "tests/support/main_loop.h"
#include "tests/support/script_context.h"
#include "tests/support/stderr_capture.h"

namespace kestrel::testing {

inline constexpr const char* kBreakout =
    "               KsJS_proxy::getStringFromJavascriptRef Breakout Error\n";
inline constexpr const char* kScriptFailed =
    "               KsJS_proxy::insertJS: Error calling JSObjectCallAsFunction in static void "
    "KsJS_proxy::insertJS(int*, std::string*)\n";
inline constexpr const char* kNoCallback =
    "               KsJS_proxy::szyns_cb_wrapper Error calling JSObjectCallAsFunction ajaxrespfn "
    "in static gboolean KsJS_proxy::szyns_cb_wrapper(std::list<char*>*)\n";
inline constexpr const char* kCallbackFailed =
    "               KsJS_proxy::szyns_cb_wrapper Error calling JSObjectCallAsFunction cb in "
    "static gboolean KsJS_proxy::szyns_cb_wrapper(std::list<char*>*)\n";

// The strings of a message as its handler gets them.
using HandlerStrings = std::array<std::string, 6>;

// A host, and no page yet.
class PageGlue : public ::testing::Test {
  protected:
    ~PageGlue() override {
        jsContext = nullptr;
        globalObject = nullptr;
    }

    static void insert(const std::string& script) {
        HandlerStrings strings{script};
        KsJS_proxy::insertJS(nullptr, strings.data());
    }

    static void deliver(HandlerStrings strings) {
        KsJS_proxy::zyns_cb_wrapper(nullptr, strings.data());
        run_main_loop_until_idle();
    }

    LinkPeer host;
    StderrCapture errors;
};

// A page with `external` is the current one.
class PageGlueWithPage : public PageGlue {
  protected:
    PageGlueWithPage() {
        jsContext = page.get();
        globalObject = page.global();
        KsJS_proxy::loadJSAPI(jsContext, globalObject);
    }

    ScriptContext page;
};

}  // namespace kestrel::testing
