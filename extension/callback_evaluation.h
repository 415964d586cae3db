#pragma once

#include <JavaScriptCore/JavaScript.h>

namespace kestrel {

// Evaluates the text of a callback as a script in `context`. Null when that throws, after an error
// line if the exception has no text. Faster for a name that came last as well. Main thread only.
JSValueRef evaluate_callback(JSGlobalContextRef context, const char* text);

// Lets go of what makes it faster, which belongs to one page. Main thread only.
void forget_named_callback();

}  // namespace kestrel
