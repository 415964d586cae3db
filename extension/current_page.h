// The page that script runs in: the main frame last attached. Main thread only.
#pragma once

#include <webkit2/webkit-web-extension.h>

#include "extension/retained_context.h"

namespace kestrel {

// Makes the main frame of `page` the current one: retains it, its context and the world in the
// exported globals and releases what they held.
void attach_page(WebKitWebPage* page, WebKitFrame* frame, WebKitScriptWorld* world);

// The context of the page that the main frame shows now, or null when no page is attached or it has
// gone. Follows the frame: WebKit announces no new window object when a page comes back from its
// cache.
RetainedContext current_page_context();

}  // namespace kestrel
