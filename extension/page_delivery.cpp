#include "extension/page_delivery.h"

#include <JavaScriptCore/JavaScript.h>

#include <array>
#include <span>

#include "base/error_line.h"
#include "extension/script_function.h"
#include "ipc/send.h"
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

// Null when the text throws.
JSValueRef evaluate(JSContextRef context, const std::string& text) {
    JSValueRef exception = nullptr;
    const JSValueRef result = JSEvaluateScript(
        context, kestrel::make_script_string(text.c_str()).get(), nullptr, nullptr, 1, &exception);
    kestrel::check_exception(context, exception);
    return result;
}

// Script values of an answer's arguments. A few are kept in this object, which must be on the
// stack, where the collector finds them; more are kept on the heap and protected, which costs more
// than creating them.
class ScriptStrings {
  public:
    ScriptStrings(JSContextRef context, std::span<const std::string> texts) : context_(context) {
        const bool are_few = texts.size() <= few_.size();
        many_.reserve(are_few ? 0 : texts.size());
        auto place = few_.begin();
        for (const std::string& text : texts) {
            const JSValueRef value =
                JSValueMakeString(context, kestrel::make_script_string(text.c_str()).get());
            if (are_few) {
                *place++ = value;
            } else {
                JSValueProtect(context, value);
                many_.push_back(value);
            }
        }
        values_ = are_few ? std::span(few_).first(texts.size()) : std::span(many_);
    }
    ~ScriptStrings() {
        for (const JSValueRef value : many_) JSValueUnprotect(context_, value);
    }
    ScriptStrings(const ScriptStrings&) = delete;
    ScriptStrings& operator=(const ScriptStrings&) = delete;

    std::span<const JSValueRef> values() const { return values_; }

  private:
    JSContextRef context_;
    std::array<JSValueRef, kestrel::kAjaxArguments> few_;
    std::vector<JSValueRef> many_;
    std::span<JSValueRef> values_;
};

}  // namespace

void kestrel::run_script(const std::string& script) {
    const RetainedContext page = current_page_context();
    if (!page) {
        error_line(kScriptFailed);
        return;
    }
    const JSContextRef context = page.get();
    JSValueRef exception = nullptr;
    const JSObjectRef function = make_function(context, script.c_str(), exception);
    check_exception(context, exception);
    const JSValueRef result =
        function == nullptr
            ? nullptr
            : JSObjectCallAsFunction(context, function, nullptr, 0, nullptr, &exception);
    if (result == nullptr) error_line(kScriptFailed);
    check_exception(context, exception);
}

void kestrel::run_script_in(PageId page, const std::string& script) {
    if (page == current_page()) {
        run_script(script);
    } else {
        error_line(kScriptFailed);
    }
}

// The address sanitizer moves locals to where the collector does not look.
[[gnu::no_sanitize_address]] void kestrel::deliver_answer(const Answer& answer) {
    const RetainedContext page = current_page_context();
    const JSGlobalContextRef context = page.get();
    const JSValueRef result = page ? evaluate(context, answer.front()) : nullptr;
    if (result == nullptr || !JSValueIsObject(context, result)) {
        error_line(kNoCallback);
        return;
    }
    const JSObjectRef function = JSValueToObject(context, result, nullptr);
    if (function == nullptr) error_line(kNullCallback);

    const ScriptStrings strings(context, std::span(answer).subspan(1));
    const JSValueRef returned =
        function == nullptr
            ? nullptr
            : JSObjectCallAsFunction(context, function, nullptr, strings.values().size(),
                                     strings.values().data(), nullptr);
    if (returned == nullptr) error_line(kCallbackFailed);
    send(to_host("answerDelivered"), {}, {});
}
