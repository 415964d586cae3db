#pragma once

#include <webkit2/webkit-web-extension.h>

namespace kestrel {

// Handler of "window-object-cleared": adds the object `external` to the new page of a main frame
// and, if there are resources, the namespace ZYNS. Ignores subframes. Main thread.
void on_window_object_cleared(WebKitScriptWorld* world, WebKitWebPage* page, WebKitFrame* frame,
                              void* user_data);

}  // namespace kestrel
