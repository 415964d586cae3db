#pragma once

#include <JavaScriptCore/JavaScript.h>

namespace kestrel {

// Puts the object `external` on `global`, the global object of `context`. Main thread.
void add_external_object(JSGlobalContextRef context, JSObjectRef global);

}  // namespace kestrel
