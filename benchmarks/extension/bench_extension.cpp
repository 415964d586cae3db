// A second extension, beside the library under test. It gives the page the object `bench`: the
// floors and a peer of a page call, a clock, and functions that load the library under test and
// measure it.
#include <JavaScriptCore/JavaScript.h>
#include <malloc.h>
#include <webkit2/webkit-web-extension.h>

#include <chrono>
#include <cstdlib>
#include <memory>
#include <string>

#include "benchmarks/extension/floors.h"
#include "benchmarks/extension/library_facts.h"
#include "benchmarks/extension/loaded_extension.h"
#include "benchmarks/extension/private_memory.h"

// JavaScriptCore exports it but declares it in no public header; no other function collects garbage
// before it returns.
extern "C" void JSSynchronousGarbageCollectForDebugging(JSContextRef context);

namespace {

struct Paths {
    std::string library;  // under test
    std::string empty_library;
};

Paths paths;
WebKitWebExtension* web_extension = nullptr;
kestrel::bench::Page shown;

JSValueRef number(JSContextRef context, double value) { return JSValueMakeNumber(context, value); }

// Nanoseconds of a clock that all processes share.
JSValueRef now(JSContextRef context, JSObjectRef /*function*/, JSObjectRef /*self*/,
               size_t /*count*/, const JSValueRef /*arguments*/[], JSValueRef* /*exception*/) {
    return number(context,
                  static_cast<double>(std::chrono::steady_clock::now().time_since_epoch().count()));
}

// ask(text, callback): sends a message to the view and calls the callback with the reply's text.
JSValueRef ask(JSContextRef context, JSObjectRef /*function*/, JSObjectRef /*self*/,
               size_t /*count*/, const JSValueRef arguments[], JSValueRef* exception) {
    struct Callback {
        JSGlobalContextRef context;
        JSObjectRef function;
    };
    const JSStringRef text = JSValueToStringCopy(context, arguments[0], exception);
    std::string utf8(JSStringGetMaximumUTF8CStringSize(text), '\0');
    utf8.resize(JSStringGetUTF8CString(text, utf8.data(), utf8.size()) - 1);
    JSStringRelease(text);

    auto* callback = new Callback{JSContextGetGlobalContext(context),
                                  JSValueToObject(context, arguments[1], exception)};
    JSValueProtect(callback->context, callback->function);
    webkit_web_page_send_message_to_view(
        shown.page, webkit_user_message_new("ask", g_variant_new_string(utf8.c_str())), nullptr,
        [](GObject* page, GAsyncResult* result, void* data) {
            const std::unique_ptr<Callback> asked(static_cast<Callback*>(data));
            WebKitUserMessage* reply =
                webkit_web_page_send_message_to_view_finish(WEBKIT_WEB_PAGE(page), result, nullptr);
            const JSStringRef answer = JSStringCreateWithUTF8CString(
                g_variant_get_string(webkit_user_message_get_parameters(reply), nullptr));
            const JSValueRef argument = JSValueMakeString(asked->context, answer);
            JSStringRelease(answer);
            JSObjectCallAsFunction(asked->context, asked->function, nullptr, 1, &argument, nullptr);
            JSValueUnprotect(asked->context, asked->function);
            g_object_unref(reply);
        },
        callback);
    return JSValueMakeUndefined(context);
}

// loadingFigures(): JSON text; only before load().
JSValueRef loading_figures(JSContextRef context, JSObjectRef /*function*/, JSObjectRef /*self*/,
                           size_t /*count*/, const JSValueRef /*arguments*/[],
                           JSValueRef* /*exception*/) {
    const kestrel::bench::LibraryFacts facts = kestrel::bench::facts_of(paths.library.c_str());
    char* const json =
        g_strdup_printf(R"({"load_empty_library": %.0f, "load_library": %.0f, "relocations": %zu, )"
                        R"("constructors": %zu})",
                        kestrel::bench::nanoseconds_to_load(paths.empty_library.c_str()),
                        kestrel::bench::nanoseconds_to_load(paths.library.c_str()),
                        facts.relocations, facts.constructors);
    const JSStringRef text = JSStringCreateWithUTF8CString(json);
    g_free(json);
    const JSValueRef value = JSValueMakeString(context, text);
    JSStringRelease(text);
    return value;
}

JSValueRef load(JSContextRef context, JSObjectRef /*function*/, JSObjectRef /*self*/,
                size_t /*count*/, const JSValueRef /*arguments*/[], JSValueRef* /*exception*/) {
    kestrel::bench::load_extension(paths.library.c_str(), web_extension, shown);
    return JSValueMakeUndefined(context);
}

// attach(count): nanoseconds per attachment.
JSValueRef attach(JSContextRef context, JSObjectRef /*function*/, JSObjectRef /*self*/,
                  size_t /*count*/, const JSValueRef arguments[], JSValueRef* exception) {
    const double count = JSValueToNumber(context, arguments[0], exception);
    return number(context, kestrel::bench::attach(shown, static_cast<int>(count)));
}

// privateMemory(): bytes, after garbage and free heap pages are returned to the system.
JSValueRef private_memory(JSContextRef context, JSObjectRef /*function*/, JSObjectRef /*self*/,
                          size_t /*count*/, const JSValueRef /*arguments*/[],
                          JSValueRef* /*exception*/) {
    JSSynchronousGarbageCollectForDebugging(context);
    malloc_trim(0);
    return number(context, static_cast<double>(kestrel::bench::private_memory(paths.library)));
}

constexpr JSPropertyAttributes kReadOnly = kJSPropertyAttributeReadOnly;

constexpr JSStaticFunction kFunctions[] = {
    {"now", now, kReadOnly},
    {"prepare", kestrel::bench::prepare, kReadOnly},
    {"readTexts", kestrel::bench::read_texts, kReadOnly},
    {"convert", kestrel::bench::convert, kReadOnly},
    {"ask", ask, kReadOnly},
    {"loadingFigures", loading_figures, kReadOnly},
    {"load", load, kReadOnly},
    {"attach", attach, kReadOnly},
    {"privateMemory", private_memory, kReadOnly},
    {nullptr, nullptr, 0},
};

// Added in the same way as `external` by the library under test.
void add_bench(WebKitScriptWorld* /*world*/, WebKitWebPage* page, WebKitFrame* main_frame,
               void* /*user_data*/) {
    if (shown.page != nullptr) return;  // attached again by attach()
    shown = {page, main_frame};
    G_GNUC_BEGIN_IGNORE_DEPRECATIONS
    const JSGlobalContextRef context = webkit_frame_get_javascript_global_context(main_frame);
    G_GNUC_END_IGNORE_DEPRECATIONS
    JSClassDefinition definition{};
    definition.className = "Bench";
    definition.staticFunctions = kFunctions;
    const JSObjectRef object = JSObjectMake(context, JSClassCreate(&definition), nullptr);
    const JSStringRef name = JSStringCreateWithUTF8CString("bench");
    JSObjectSetProperty(context, JSContextGetGlobalObject(context), name, object,
                        kJSPropertyAttributeNone, nullptr);
    JSStringRelease(name);
}

}  // namespace

extern "C" [[gnu::visibility("default")]] void webkit_web_extension_initialize_with_user_data(
    WebKitWebExtension* extension, GVariant* user_data) {
    web_extension = extension;
    const char* library = nullptr;
    const char* empty_library = nullptr;
    g_variant_get(user_data, "(&s&s)", &library, &empty_library);
    paths = {library, empty_library};
    g_signal_connect(webkit_script_world_get_default(), "window-object-cleared",
                     G_CALLBACK(add_bench), nullptr);
}
