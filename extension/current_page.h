// The page that script runs in: of the pages whose main frame has been attached and that still
// live, the one attached last. A popup in the same process is the current page until it closes.
#pragma once

#include <webkit2/webkit-web-extension.h>

#include <cstdint>

#include "extension/retained_context.h"

namespace kestrel {

// A new number whenever another page becomes the current one, by attachment or because a popup has
// closed.
using PageId = std::uint64_t;

// Makes the main frame of `page` the current one and sets the exported globals, which hold their
// objects until another page is current. Main thread.
void attach_page(WebKitWebPage* page, WebKitFrame* frame, WebKitScriptWorld* world);

// The current page; 0 when there is none. Any thread.
PageId current_page();

// The context that the current page's main frame shows now, or null when there is no current page.
// Asks the frame each time: WebKit announces no new window object when a page comes back from its
// cache. Main thread.
RetainedContext current_page_context();

}  // namespace kestrel
