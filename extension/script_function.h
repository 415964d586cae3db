#pragma once

#include <JavaScriptCore/JavaScript.h>

namespace kestrel {

// The function of no parameters that script's own Function constructor makes of `body`, made where
// a page's policies do not look: those can forbid or watch the constructor. Null, with `exception`
// set, if `body` is not a function body. Text that is not UTF-8 counts as empty. Main thread.
JSObjectRef make_function(JSContextRef context, const char* body, JSValueRef& exception);

}  // namespace kestrel
