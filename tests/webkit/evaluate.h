#pragma once

#include <webkit2/webkit2.h>

#include <functional>
#include <string>

namespace kestrel::testing {

// The text of what `script` gives in the view's page, "error: ..." if it throws; "" if nothing has
// come when `is_hopeless` holds. Runs the main loop meanwhile.
std::string evaluate(
    WebKitWebView* view, const std::string& script,
    const std::function<bool()>& is_hopeless = [] { return false; });

}  // namespace kestrel::testing
