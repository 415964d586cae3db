#include "extension/callback_evaluation.h"

#include <string>
#include <string_view>

#include "base/never_destroyed.h"
#include "extension/retained_context.h"
#include "jsapi/KsJS_proxy.h"
#include "jsapi/script_text.h"

namespace kestrel {
namespace {

constexpr bool starts_name(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c == '$';
}

constexpr bool goes_on(char c) { return starts_name(c) || (c >= '0' && c <= '9') || c == '.'; }

// Names with dots between them.
constexpr bool is_name(std::string_view text) {
    constexpr std::size_t kLongest = 100;
    char before = '.';
    for (const char c : text) {
        if (before == '.' ? !starts_name(c) : !goes_on(c)) return false;
        before = c;
    }
    return before != '.' && text.size() <= kLongest;
}

// The name that came last, and once it has come twice in a row in a page, the function that returns
// what it names there, or null if there is none.
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

// An arrow function finds what the plain name would, "this" and "arguments" too. It is evaluated
// because a page can forbid or watch the making of functions from text. Null for what only looks
// like a name, such as "new.target".
JSObjectRef make_function(JSGlobalContextRef context, const std::string& name) {
    const std::string arrow = "(() => " + name + ")";
    const JSValueRef made = JSEvaluateScript(context, make_script_string(arrow.c_str()).get(),
                                             nullptr, nullptr, 1, nullptr);
    if (made == nullptr) return nullptr;
    JSValueProtect(context, made);
    return JSValueToObject(context, made, nullptr);
}

// The function for a name that comes again, or null.
JSObjectRef function_for(JSGlobalContextRef context, const char* text) {
    if (!is_name(text)) return nullptr;
    NamedCallback& callback = last();
    if (callback.name != text) {
        forget_named_callback();
        callback.name = text;
        return nullptr;
    }
    if (callback.context.get() != context) {
        forget_named_callback();
        callback.context.reset(JSGlobalContextRetain(context));
        callback.function = make_function(context, callback.name);
    }
    return callback.function;
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
