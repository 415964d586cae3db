#include "extension/callback_evaluation.h"

#include <string>
#include <string_view>

#include "extension/retained_context.h"
#include "ipc/never_destroyed.h"
#include "jsapi/KsJS_proxy.h"
#include "jsapi/script_text.h"

namespace kestrel {
namespace {

constexpr bool starts_name(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c == '$';
}

constexpr bool goes_on(char c) { return starts_name(c) || (c >= '0' && c <= '9') || c == '.'; }

// Names with dots between them mean the same in a function's body as outside of one; only
// "arguments" does not.
constexpr bool is_name(std::string_view text) {
    char before = '.';
    for (const char c : text) {
        if (before == '.' ? !starts_name(c) : !goes_on(c)) return false;
        before = c;
    }
    return before != '.' && !text.starts_with("arguments");
}

// The name that came last, and once it has come twice in a page, the function that returns what it
// names there, or null if it cannot be made.
struct NamedCallback {
    std::string name;
    RetainedContext context;
    JSObjectRef function = nullptr;
};

// Never destroyed: JavaScriptCore may be gone before us.
NamedCallback& last() {
    static NeverDestroyed<NamedCallback> last;
    return last.object;
}

void make_function(NamedCallback& callback, JSGlobalContextRef context) {
    forget_named_callback();
    callback.context.reset(JSGlobalContextRetain(context));
    const std::string body = "return " + callback.name;
    callback.function = JSObjectMakeFunction(
        context, nullptr, 0, nullptr, make_script_string(body.c_str()).get(), nullptr, 1, nullptr);
    if (callback.function != nullptr) JSValueProtect(context, callback.function);
}

// The function for a name that comes again, or null.
JSObjectRef function_for(JSGlobalContextRef context, const char* text) {
    if (!is_name(text)) return nullptr;
    if (last().name != text) {
        forget_named_callback();
        last().name = text;
        return nullptr;
    }
    if (last().context.get() != context) make_function(last(), context);
    return last().function;
}

}  // namespace

JSValueRef evaluate_callback(JSGlobalContextRef context, const char* text) {
    JSValueRef exception = nullptr;
    const JSObjectRef function = function_for(context, text);
    const JSValueRef result =
        function == nullptr
            ? JSEvaluateScript(context, make_script_string(text).get(), nullptr, nullptr, 1,
                               &exception)
            : JSObjectCallAsFunction(context, function, nullptr, 0, nullptr, &exception);
    KsJS_proxy::traceExceptionJS(context, exception);
    return result;
}

void forget_named_callback() {
    NamedCallback& callback = last();
    if (callback.function != nullptr) JSValueUnprotect(callback.context.get(), callback.function);
    callback.function = nullptr;
    callback.context.reset();
}

}  // namespace kestrel
