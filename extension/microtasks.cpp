#include "extension/microtasks.h"

#include "base/never_destroyed.h"
#include "extension/retained_context.h"
#include "jsapi/script_text.h"

namespace kestrel {
namespace {

// The page sees neither the target nor the event. When its listener returns, WebKit performs a
// microtask checkpoint, as for any event that is not dispatched by script.
constexpr const char* kMakeCheckpoint =
    "(() => {"
    "  const target = new EventTarget();"
    "  const event = new Event('checkpoint');"
    "  target.addEventListener(event.type, () => {});"
    "  return target.dispatchEvent.bind(target, event);"
    "})()";

struct Checkpoint {
    RetainedContext context;
    JSValueRef function = nullptr;  // protected; null in a context without events
};

// A failed send on the reader thread runs static destructors while the main thread works on.
Checkpoint& checkpoint() {
    static NeverDestroyed<Checkpoint> checkpoint;
    return checkpoint.object;
}

}  // namespace

void set_microtask_context(JSGlobalContextRef context) {
    auto& [shown, function] = checkpoint();
    if (function != nullptr) JSValueUnprotect(shown.get(), function);
    function = nullptr;
    shown.reset(context == nullptr ? nullptr : JSGlobalContextRetain(context));
    if (!shown) return;
    function = JSEvaluateScript(context, make_script_string(kMakeCheckpoint).get(), nullptr,
                                nullptr, 1, nullptr);
    if (function != nullptr) JSValueProtect(context, function);
}

void run_microtasks() {
    if (checkpoint().function == nullptr) return;
    // A microtask may leave the page.
    const RetainedContext context(JSGlobalContextRetain(checkpoint().context.get()));
    const JSObjectRef dispatch = JSValueToObject(context.get(), checkpoint().function, nullptr);
    JSObjectCallAsFunction(context.get(), dispatch, nullptr, 0, nullptr, nullptr);
}

}  // namespace kestrel
