#include "tests/webkit/evaluate.h"

#include <memory>

#include "tests/support/main_loop.h"

namespace kestrel::testing {
namespace {

std::string text_of(WebKitWebView* view, GAsyncResult* result) {
    GError* error = nullptr;
    JSCValue* value = webkit_web_view_evaluate_javascript_finish(view, result, &error);
    if (value == nullptr) {
        std::string text = std::string("error: ") + error->message;
        g_error_free(error);
        return text;
    }
    char* string = jsc_value_to_string(value);
    std::string text = string;
    g_free(string);
    g_object_unref(value);
    return text;
}

}  // namespace

std::string evaluate(WebKitWebView* view, const std::string& script,
                     const std::function<bool()>& is_hopeless) {
    struct Answer {
        bool come = false;
        std::string text;
    };
    auto answer = std::make_shared<Answer>();
    webkit_web_view_evaluate_javascript(
        view, script.c_str(), -1, nullptr, nullptr, nullptr,
        [](GObject* source, GAsyncResult* result, void* data) {
            const std::unique_ptr<std::shared_ptr<Answer>> place(
                static_cast<std::shared_ptr<Answer>*>(data));
            (*place)->text = text_of(WEBKIT_WEB_VIEW(source), result);
            (*place)->come = true;
        },
        new std::shared_ptr<Answer>(answer));
    run_main_loop_until([&] { return answer->come || is_hopeless(); });
    return answer->text;
}

}  // namespace kestrel::testing
