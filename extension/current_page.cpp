#include "extension/current_page.h"

#include <utility>

#include "extension/callback_evaluation.h"
#include "extension/page_globals.h"
#include "jsapi/argument_text.h"

namespace kestrel {
namespace {

// Null once the page has been closed. A retained frame outlives its page and cannot tell.
constinit WebKitWebPage* web_page = nullptr;

// The plain function interface of the API; its replacement returns a JSC object we have no use for.
JSGlobalContextRef context_of(WebKitFrame* frame) {
    G_GNUC_BEGIN_IGNORE_DEPRECATIONS
    return webkit_frame_get_javascript_global_context(frame);
    G_GNUC_END_IGNORE_DEPRECATIONS
}

void set_context(JSGlobalContextRef context) {
    if (context == jsContext) return;
    forget_named_callback();
    if (jsContext != nullptr) forget_kept_texts(jsContext);
    const RetainedContext previous(std::exchange(jsContext, JSGlobalContextRetain(context)));
    globalObject = JSContextGetGlobalObject(context);
}

}  // namespace

void attach_page(WebKitWebPage* page, WebKitFrame* frame, WebKitScriptWorld* world) {
    g_set_weak_pointer(&web_page, page);
    g_set_object(&web_frame, frame);
    g_set_object(&web_world, world);
    set_context(context_of(frame));
}

RetainedContext current_page_context() {
    if (web_frame != nullptr) {
        const JSGlobalContextRef shown = web_page == nullptr ? nullptr : context_of(web_frame);
        if (shown == nullptr) return nullptr;
        set_context(shown);
    }
    return RetainedContext(jsContext == nullptr ? nullptr : JSGlobalContextRetain(jsContext));
}

}  // namespace kestrel
