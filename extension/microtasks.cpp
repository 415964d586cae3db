#include "extension/microtasks.h"

#include "base/never_destroyed.h"
#include "extension/page_globals.h"
#include "extension/retained_context.h"
#include "jsapi/script_text.h"

namespace kestrel {
namespace {

// When the listener returns, WebKit performs a microtask checkpoint, as for any event that is not
// dispatched by script.
constexpr const char* kMakeCheckpoint =
    "(() => {"
    "  const target = new EventTarget();"
    "  const event = new Event('checkpoint');"
    "  target.addEventListener(event.type, () => {});"
    "  return target.dispatchEvent.bind(target, event);"
    "})()";

struct Checkpoint {
    RetainedContext context;
    JSObjectRef function = nullptr;  // protected
};

// A failed send on the reader thread runs static destructors while the main thread works on.
Checkpoint& checkpoint() {
    static NeverDestroyed<Checkpoint> checkpoint;
    return checkpoint.object;
}

// The context of a script world of our own. It has the page's event loop, but not the page's
// globals, which the page may have replaced. Null without a frame.
JSGlobalContextRef private_context() {
    if (web_frame == nullptr) return nullptr;
    static WebKitScriptWorld* const world = webkit_script_world_new();  // never released
    G_GNUC_BEGIN_IGNORE_DEPRECATIONS
    return webkit_frame_get_javascript_context_for_script_world(web_frame, world);
    G_GNUC_END_IGNORE_DEPRECATIONS
}

void make_checkpoint() {
    const JSGlobalContextRef context = private_context();
    if (context == nullptr) return;
    const JSValueRef made = JSEvaluateScript(context, make_script_string(kMakeCheckpoint).get(),
                                             nullptr, nullptr, 1, nullptr);
    if (made == nullptr) return;
    JSValueProtect(context, made);
    checkpoint().context.reset(JSGlobalContextRetain(context));
    checkpoint().function = JSValueToObject(context, made, nullptr);
}

}  // namespace

void run_microtasks() {
    if (!checkpoint().context) make_checkpoint();
    if (!checkpoint().context) return;
    // A microtask may change the page, which clears the cache.
    const RetainedContext context(JSGlobalContextRetain(checkpoint().context.get()));
    JSObjectCallAsFunction(context.get(), checkpoint().function, nullptr, 0, nullptr, nullptr);
}

void forget_microtask_context() {
    auto& [context, function] = checkpoint();
    if (context) JSValueUnprotect(context.get(), function);
    function = nullptr;
    context.reset();
}

}  // namespace kestrel
