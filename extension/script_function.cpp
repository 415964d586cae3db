#include "extension/script_function.h"

#include <string>

#include "jsapi/script_text.h"

namespace kestrel {
namespace {

// A body that closes the function early could be more script than a function: `}, other() {` would
// pass in the object, and `} {` in the declaration. No such body passes in both. The line breaks
// are the constructor's, for the line numbers of exceptions.
ScriptString declaration_of(const char* body) {
    return make_script_string((std::string("function anonymous(\n) {\n") + body + "\n}").c_str());
}

ScriptString method_of(const char* body) {
    return make_script_string(
        (std::string("({anonymous(\n) {\n") + body + "\n}}).anonymous").c_str());
}

}  // namespace

JSObjectRef make_function(JSContextRef context, const char* body, JSValueRef& exception) {
    const ScriptString declaration = declaration_of(body);
    if (JSStringGetLength(declaration.get()) == 0) return make_function(context, "", exception);
    if (!JSCheckScriptSyntax(context, declaration.get(), nullptr, 1, &exception)) return nullptr;
    const JSValueRef method =
        JSEvaluateScript(context, method_of(body).get(), nullptr, nullptr, 1, &exception);
    return method == nullptr ? nullptr : JSValueToObject(context, method, &exception);
}

}  // namespace kestrel
