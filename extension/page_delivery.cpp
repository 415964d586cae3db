#include "extension/page_delivery.h"

#include <JavaScriptCore/JavaScript.h>

#include "extension/current_page.h"
#include "ipc/error_line.h"
#include "ipc/send.h"
#include "jsapi/KsJS_proxy.h"
#include "jsapi/script_text.h"

namespace {

constexpr const char* kScriptFailed =
    "               KsJS_proxy::insertJS: Error calling JSObjectCallAsFunction in "
    "static void KsJS_proxy::insertJS(int*, std::string*)\n";
constexpr const char* kNoCallback =
    "               KsJS_proxy::szyns_cb_wrapper Error calling JSObjectCallAsFunction ajaxrespfn "
    "in "
    "static gboolean KsJS_proxy::szyns_cb_wrapper(std::list<char*>*)\n";
constexpr const char* kNullCallback =
    "               KsJS_proxy::szyns_cb_wrapper CBJS IS NULL!!\n";
constexpr const char* kCallbackFailed =
    "               KsJS_proxy::szyns_cb_wrapper Error calling JSObjectCallAsFunction cb in "
    "static gboolean KsJS_proxy::szyns_cb_wrapper(std::list<char*>*)\n";

// Script values on the heap, where the collector does not look for them by itself.
class ProtectedStrings {
  public:
    ProtectedStrings(JSContextRef context, const std::vector<const char*>& texts)
        : context_(context) {
        values_.reserve(texts.size());
        for (const char* text : texts) {
            const JSValueRef value =
                JSValueMakeString(context, kestrel::make_script_string(text).get());
            JSValueProtect(context, value);
            values_.push_back(value);
        }
    }
    ~ProtectedStrings() {
        for (const JSValueRef value : values_) JSValueUnprotect(context_, value);
    }
    ProtectedStrings(const ProtectedStrings&) = delete;
    ProtectedStrings& operator=(const ProtectedStrings&) = delete;

    const std::vector<JSValueRef>& values() const { return values_; }

  private:
    JSContextRef context_;
    std::vector<JSValueRef> values_;
};

JSValueRef evaluate(JSContextRef context, const char* text) {
    JSValueRef exception = nullptr;
    const JSValueRef result = JSEvaluateScript(context, kestrel::make_script_string(text).get(),
                                               nullptr, nullptr, 1, &exception);
    KsJS_proxy::traceExceptionJS(context, exception);
    return result;
}

}  // namespace

void kestrel::run_script(const std::string& script) {
    const RetainedContext page = current_page_context();
    if (!page) {
        error_line(kScriptFailed);
        return;
    }
    const JSContextRef context = page.get();
    JSValueRef exception = nullptr;
    const JSObjectRef function =
        JSObjectMakeFunction(context, nullptr, 0, nullptr, make_script_string(script.c_str()).get(),
                             nullptr, 1, &exception);
    KsJS_proxy::traceExceptionJS(context, exception);
    const JSValueRef result =
        function == nullptr
            ? nullptr
            : JSObjectCallAsFunction(context, function, nullptr, 0, nullptr, &exception);
    if (result == nullptr) error_line(kScriptFailed);
    KsJS_proxy::traceExceptionJS(context, exception);
}

void kestrel::deliver_answer(const char* callback, const std::vector<const char*>& arguments) {
    const RetainedContext page = current_page_context();
    const JSContextRef context = page.get();
    const JSValueRef result = page ? evaluate(context, callback) : nullptr;
    if (result == nullptr || !JSValueIsObject(context, result)) {
        error_line(kNoCallback);
        return;
    }
    const JSObjectRef function = JSValueToObject(context, result, nullptr);
    if (function == nullptr) error_line(kNullCallback);

    const ProtectedStrings strings(context, arguments);
    const JSValueRef returned =
        function == nullptr
            ? nullptr
            : JSObjectCallAsFunction(context, function, nullptr, strings.values().size(),
                                     strings.values().data(), nullptr);
    if (returned == nullptr) error_line(kCallbackFailed);
    send(to_host("answerDelivered"), {}, {});
}
