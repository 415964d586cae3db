#pragma once

#include <webkit2/webkit2.h>

#include <functional>
#include <string>

namespace kestrel::testing {

// Runs `script` in the view's page and the main loop until the result is there. Returns the result
// as text, "error: ..." if the script throws, or "" if `is_hopeless` holds first.
std::string evaluate(
    WebKitWebView* view, const std::string& script,
    const std::function<bool()>& is_hopeless = [] { return false; });

}  // namespace kestrel::testing
