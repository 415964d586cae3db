#pragma once

#include <webkit2/webkit-web-extension.h>

namespace kestrel {

// Handler of "window-object-cleared": gives the main frame's new page the object `external` and,
// if resources are waiting, the namespace ZYNS. Other frames get nothing. Main thread.
void on_window_object_cleared(WebKitScriptWorld* world, WebKitWebPage* page, WebKitFrame* frame,
                              void* user_data);

}  // namespace kestrel
