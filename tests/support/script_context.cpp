#include "tests/support/script_context.h"

#include <memory>
#include <type_traits>

namespace kestrel::testing {
namespace {

struct StringDeleter {
    void operator()(JSStringRef string) const { JSStringRelease(string); }
};
using String = std::unique_ptr<std::remove_pointer_t<JSStringRef>, StringDeleter>;

}  // namespace

ScriptContext::ScriptContext() : context_(JSGlobalContextCreate(nullptr)) {}

ScriptContext::~ScriptContext() { JSGlobalContextRelease(context_); }

JSValueRef ScriptContext::evaluate(const std::string& script, JSValueRef& exception) const {
    const String source(JSStringCreateWithUTF8CString(script.c_str()));
    return JSEvaluateScript(context_, source.get(), nullptr, nullptr, 1, &exception);
}

std::string ScriptContext::text_of(JSValueRef value) const {
    const String string(JSValueToStringCopy(context_, value, nullptr));
    if (!string) return "a value without text";
    std::string text(JSStringGetMaximumUTF8CStringSize(string.get()), '\0');
    text.resize(JSStringGetUTF8CString(string.get(), text.data(), text.size()) - 1);
    return text;
}

std::string ScriptContext::text_of(const std::string& script) const {
    JSValueRef exception = nullptr;
    const JSValueRef value = evaluate(script, exception);
    return value == nullptr ? "threw " + text_of(exception) : text_of(value);
}

}  // namespace kestrel::testing
