// A second extension, beside the library under test: gives the page the object `bench`, with the
// floors and peers that a page call is compared with, and a clock that a page may look at.
#include <JavaScriptCore/JavaScript.h>
#include <unistd.h>
#include <webkit2/webkit-web-extension.h>

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "benchmarks/extension/library_facts.h"
#include "benchmarks/extension/loaded_extension.h"

// The one way to collect garbage before going on; declared in no public header.
extern "C" void JSSynchronousGarbageCollectForDebugging(JSContextRef context);

namespace {

using kestrel::bench::link_descriptor;

kestrel::bench::Paths paths;
WebKitWebExtension* web_extension = nullptr;
kestrel::bench::Shown shown;

// A frame's bytes, of a size that the page has asked for.
std::vector<char> frame(16);
constexpr std::size_t kHeaderSize = 16;

JSValueRef number(JSContextRef context, double value) { return JSValueMakeNumber(context, value); }

double number_of(JSContextRef context, JSValueRef value) {
    return JSValueToNumber(context, value, nullptr);
}

// In one write, unless a signal cuts it short: JavaScriptCore stops threads with signals.
void write_whole(const char* bytes, std::size_t size) {
    while (size > 0) {
        const ssize_t written = write(link_descriptor(), bytes, size);
        if (written < 0 && errno != EINTR) std::abort();
        if (written < 0) continue;
        bytes += written;
        size -= static_cast<std::size_t>(written);
    }
}

// Nanoseconds of a clock that is the same in all processes.
JSValueRef now(JSContextRef context, JSObjectRef /*function*/, JSObjectRef /*self*/,
               size_t /*count*/, const JSValueRef /*arguments*/[], JSValueRef* /*exception*/) {
    return number(context,
                  static_cast<double>(std::chrono::steady_clock::now().time_since_epoch().count()));
}

// prepare(size): the next writes are of so many bytes.
JSValueRef prepare(JSContextRef context, JSObjectRef /*function*/, JSObjectRef /*self*/,
                   size_t /*count*/, const JSValueRef arguments[], JSValueRef* /*exception*/) {
    frame.assign(static_cast<std::size_t>(number_of(context, arguments[0])), 'x');
    return JSValueMakeUndefined(context);
}

// What no library can do without: each argument's text, a look at all of its characters, which have
// two bytes each, and a copy of half as many bytes; then one write of the prepared bytes.
JSValueRef read_texts(JSContextRef context, JSObjectRef /*function*/, JSObjectRef /*self*/,
                      size_t count, const JSValueRef arguments[], JSValueRef* exception) {
    constexpr char kNowhere = 0x01;     // in no text
    constexpr std::size_t kShort = 12;  // up to here, a conversion takes less than a look
    std::size_t at = kHeaderSize;
    for (std::size_t i = 0; i < count; ++i) {
        const JSStringRef text = JSValueToStringCopy(context, arguments[i], exception);
        const std::size_t length = JSStringGetLength(text);
        if (length > kShort) {
            const auto* const half = reinterpret_cast<const char*>(JSStringGetCharactersPtr(text));
            std::memcpy(frame.data() + at, half, length);
            if (std::memchr(half + length, kNowhere, length) != nullptr) std::abort();
        } else {
            JSStringGetUTF8CString(text, frame.data() + at, frame.size() - at);
        }
        at += length + 1;
        JSStringRelease(text);
    }
    write_whole(frame.data(), frame.size());
    return JSValueMakeUndefined(context);
}

// Puts the arguments' texts into the prepared bytes as JavaScriptCore converts them, and writes.
JSValueRef convert(JSContextRef context, JSObjectRef /*function*/, JSObjectRef /*self*/,
                   size_t count, const JSValueRef arguments[], JSValueRef* exception) {
    std::size_t at = kHeaderSize;
    for (std::size_t i = 0; i < count; ++i) {
        const JSStringRef text = JSValueToStringCopy(context, arguments[i], exception);
        at += JSStringGetUTF8CString(text, frame.data() + at, frame.size() - at);
        JSStringRelease(text);
    }
    write_whole(frame.data(), at);
    return JSValueMakeUndefined(context);
}

// ask(text, callback): sends the view a message and calls back with the text of its reply.
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

JSValueRef load(JSContextRef context, JSObjectRef /*function*/, JSObjectRef /*self*/,
                size_t /*count*/, const JSValueRef /*arguments*/[], JSValueRef* /*exception*/) {
    const std::string json = kestrel::bench::load_extension(paths, web_extension, shown);
    const JSStringRef text = JSStringCreateWithUTF8CString(json.c_str());
    const JSValueRef value = JSValueMakeString(context, text);
    JSStringRelease(text);
    return value;
}

// attach(count): nanoseconds a time.
JSValueRef attach(JSContextRef context, JSObjectRef /*function*/, JSObjectRef /*self*/,
                  size_t /*count*/, const JSValueRef arguments[], JSValueRef* /*exception*/) {
    const int times = static_cast<int>(number_of(context, arguments[0]));
    return number(context, kestrel::bench::attach(shown, times));
}

// The bytes in memory after all garbage has been collected.
JSValueRef resident(JSContextRef context, JSObjectRef /*function*/, JSObjectRef /*self*/,
                    size_t /*count*/, const JSValueRef /*arguments*/[], JSValueRef* /*exception*/) {
    JSSynchronousGarbageCollectForDebugging(context);
    return number(context, static_cast<double>(kestrel::bench::resident_bytes()));
}

constexpr JSPropertyAttributes kReadOnly = kJSPropertyAttributeReadOnly;

constexpr JSStaticFunction kFunctions[] = {
    {"now", now, kReadOnly},
    {"prepare", prepare, kReadOnly},
    {"readTexts", read_texts, kReadOnly},
    {"convert", convert, kReadOnly},
    {"ask", ask, kReadOnly},
    {"load", load, kReadOnly},
    {"attach", attach, kReadOnly},
    {"resident", resident, kReadOnly},
    {nullptr, nullptr, 0},
};

// Made as the library under test makes `external`.
void give_bench(WebKitScriptWorld* /*world*/, WebKitWebPage* page, WebKitFrame* main_frame,
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
                     G_CALLBACK(give_bench), nullptr);
}
