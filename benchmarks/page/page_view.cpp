#include "benchmarks/page/page_view.h"

#include <cstdio>
#include <cstdlib>

namespace kestrel::bench {
namespace {

void set_extension(WebKitWebContext* context, void* library) {
    webkit_web_context_set_web_extensions_directory(context, BENCH_EXTENSION_DIRECTORY);
    webkit_web_context_set_web_extensions_initialization_user_data(
        context, g_variant_new("(ss)", library, BENCH_EMPTY_LIBRARY));
}

// The peer of a page call.
void ignore_message(WebKitUserContentManager* /*manager*/, WebKitJavascriptResult* /*result*/,
                    void* /*user_data*/) {}

// The peers of a round trip: what came goes back.
gboolean reply_to_script(WebKitUserContentManager* /*manager*/, JSCValue* value,
                         WebKitScriptMessageReply* reply, void* /*user_data*/) {
    webkit_script_message_reply_return_value(reply, value);
    return TRUE;
}

gboolean reply_to_extension(WebKitWebView* /*view*/, WebKitUserMessage* message,
                            void* /*user_data*/) {
    webkit_user_message_send_reply(
        message, webkit_user_message_new("reply", webkit_user_message_get_parameters(message)));
    return TRUE;
}

void add_peers(WebKitWebView* view) {
    WebKitUserContentManager* manager = webkit_web_view_get_user_content_manager(view);
    g_signal_connect(manager, "script-message-received::post", G_CALLBACK(ignore_message), nullptr);
    g_signal_connect(manager, "script-message-with-reply-received::ask",
                     G_CALLBACK(reply_to_script), nullptr);
    webkit_user_content_manager_register_script_message_handler(manager, "post");
    webkit_user_content_manager_register_script_message_handler_with_reply(manager, "ask", nullptr);
    g_signal_connect(view, "user-message-received", G_CALLBACK(reply_to_extension), nullptr);
}

void end_program(WebKitWebView* /*view*/, WebKitWebProcessTerminationReason /*reason*/,
                 void* /*user_data*/) {
    std::fputs("The web process has ended.\n", stderr);
    std::exit(EXIT_FAILURE);
}

void note_load(WebKitWebView* /*view*/, WebKitLoadEvent event, void* loaded) {
    if (event == WEBKIT_LOAD_FINISHED) *static_cast<bool*>(loaded) = true;
}

void run_until(const bool& done) {
    while (!done) g_main_context_iteration(nullptr, TRUE);
}

struct Result {
    const std::string& body;
    bool come = false;
    std::string text;
};

void take_result(GObject* view, GAsyncResult* async, void* data) {
    auto* result = static_cast<Result*>(data);
    GError* error = nullptr;
    JSCValue* value =
        webkit_web_view_call_async_javascript_function_finish(WEBKIT_WEB_VIEW(view), async, &error);
    if (value == nullptr) {
        std::fprintf(stderr, "%s: %s\n", result->body.c_str(), error->message);
        std::exit(EXIT_FAILURE);
    }
    char* text = jsc_value_to_string(value);
    result->text = text;
    result->come = true;
    g_free(text);
    g_object_unref(value);
}

}  // namespace

PageView::PageView(const char* library) {
    WebKitWebContext* context = webkit_web_context_new_ephemeral();
    g_signal_connect(context, "initialize-web-extensions", G_CALLBACK(set_extension),
                     const_cast<char*>(library));
    view_ = WEBKIT_WEB_VIEW(webkit_web_view_new_with_context(context));
    g_object_unref(context);
    add_peers(view_);
    bool loaded = false;
    g_signal_connect(view_, "web-process-terminated", G_CALLBACK(end_program), nullptr);
    const gulong load = g_signal_connect(view_, "load-changed", G_CALLBACK(note_load), &loaded);
    window_ = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    gtk_container_add(GTK_CONTAINER(window_), GTK_WIDGET(view_));
    gtk_widget_show_all(window_);
    webkit_web_view_load_uri(view_, "file://" BENCH_PAGE);
    run_until(loaded);
    g_signal_handler_disconnect(view_, load);
}

PageView::~PageView() {
    g_signal_handlers_disconnect_by_func(view_, reinterpret_cast<void*>(end_program), nullptr);
    gtk_widget_destroy(window_);
}

std::string PageView::run(const std::string& body) const {
    Result result{body, false, ""};
    webkit_web_view_call_async_javascript_function(view_, body.c_str(), -1, nullptr, nullptr,
                                                   nullptr, nullptr, take_result, &result);
    run_until(result.come);
    return result.text;
}

void PageView::evaluate(const std::vector<std::string>& scripts) const {
    std::size_t left = scripts.size();
    for (const std::string& script : scripts) {
        webkit_web_view_evaluate_javascript(
            view_, script.c_str(), -1, nullptr, nullptr, nullptr,
            [](GObject* view, GAsyncResult* result, void* data) {
                JSCValue* value = webkit_web_view_evaluate_javascript_finish(WEBKIT_WEB_VIEW(view),
                                                                             result, nullptr);
                g_clear_object(&value);
                --*static_cast<std::size_t*>(data);
            },
            &left);
    }
    while (left > 0) g_main_context_iteration(nullptr, TRUE);
}

}  // namespace kestrel::bench
