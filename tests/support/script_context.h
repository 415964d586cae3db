#pragma once

#include <JavaScriptCore/JavaScript.h>

#include <string>

namespace kestrel::testing {

// A new JavaScriptCore context.
class ScriptContext {
  public:
    ScriptContext();
    ~ScriptContext();
    ScriptContext(const ScriptContext&) = delete;
    ScriptContext& operator=(const ScriptContext&) = delete;

    JSGlobalContextRef get() const { return context_; }
    JSObjectRef global() const { return JSContextGetGlobalObject(context_); }

    // The result of `script`; null if it throws, which sets `exception`.
    JSValueRef evaluate(const std::string& script, JSValueRef& exception) const;

    // A value converted to a string by script.
    std::string text_of(JSValueRef value) const;

    // The result of `script` as text; "threw " and the exception if it throws.
    std::string text_of(const std::string& script) const;

  private:
    JSGlobalContextRef context_;
};

}  // namespace kestrel::testing
