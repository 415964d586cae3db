// The page that script runs in: the main frame last attached. Main thread only.
#pragma once

#include <JavaScriptCore/JavaScript.h>
#include <webkit2/webkit-web-extension.h>

#include <memory>
#include <type_traits>

namespace kestrel {

struct ContextDeleter {
    void operator()(JSGlobalContextRef context) const { JSGlobalContextRelease(context); }
};

// A script context that stays alive, whatever the script that runs in it does to its page.
using RetainedContext = std::unique_ptr<std::remove_pointer_t<JSGlobalContextRef>, ContextDeleter>;

// Makes the main frame of `page` the current one: retains it, its context and the world in the
// exported globals and releases what they held.
void attach_page(WebKitWebPage* page, WebKitFrame* frame, WebKitScriptWorld* world);

// The context of the page that the main frame shows now, or null when no page is attached or it has
// gone. Follows the frame: WebKit announces no new window object when a page comes back from its
// cache.
RetainedContext current_page_context();

}  // namespace kestrel
