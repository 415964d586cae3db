// A second extension beside the one under test. Gives each page `memoryInUse()`: collects garbage
// and returns three figures of the web process: bytes in use of malloc, bytes in use of the
// JavaScript heap, and the number of protected values.
#include <JavaScriptCore/JavaScript.h>
#include <malloc.h>
#include <webkit2/webkit-web-extension.h>

#include "tests/support/collector.h"

// Declared in no public header.
extern "C" JSObjectRef JSGetMemoryUsageStatistics(JSContextRef context);

namespace {

JSValueRef property(JSContextRef context, JSObjectRef object, const char* name) {
    const JSStringRef text = JSStringCreateWithUTF8CString(name);
    const JSValueRef value = JSObjectGetProperty(context, object, text, nullptr);
    JSStringRelease(text);
    return value;
}

JSValueRef memory_in_use(JSContextRef context, JSObjectRef /*function*/, JSObjectRef /*self*/,
                         size_t /*count*/, const JSValueRef /*arguments*/[],
                         JSValueRef* /*exception*/) {
    JSSynchronousGarbageCollectForDebugging(context);
    const auto info = mallinfo2();
    const JSObjectRef statistics = JSGetMemoryUsageStatistics(context);
    const JSValueRef figures[] = {
        JSValueMakeNumber(context, static_cast<double>(info.uordblks + info.hblkhd)),
        property(context, statistics, "heapSize"),
        property(context, statistics, "protectedObjectCount")};
    return JSObjectMakeArray(context, 3, figures, nullptr);
}

void add_function(WebKitScriptWorld* /*world*/, WebKitWebPage* /*page*/, WebKitFrame* frame,
                  void* /*data*/) {
    G_GNUC_BEGIN_IGNORE_DEPRECATIONS
    const JSGlobalContextRef context = webkit_frame_get_javascript_global_context(frame);
    G_GNUC_END_IGNORE_DEPRECATIONS
    const JSStringRef name = JSStringCreateWithUTF8CString("memoryInUse");
    JSObjectSetProperty(context, JSContextGetGlobalObject(context), name,
                        JSObjectMakeFunctionWithCallback(context, name, memory_in_use),
                        kJSPropertyAttributeNone, nullptr);
    JSStringRelease(name);
}

}  // namespace

extern "C" [[gnu::visibility("default")]] void webkit_web_extension_initialize(
    WebKitWebExtension* /*extension*/) {
    g_signal_connect(webkit_script_world_get_default(), "window-object-cleared",
                     G_CALLBACK(add_function), nullptr);
}
