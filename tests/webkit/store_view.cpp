#include "tests/webkit/store_view.h"

#include <array>
#include <fstream>

#include "tests/support/main_loop.h"
#include "tests/webkit/evaluate.h"

namespace kestrel::testing {
namespace {

GVariant* strings_variant(const std::string& install_root, const std::string& resources) {
    const std::array<const char*, 2> strings = {install_root.c_str(), resources.c_str()};
    return g_variant_new_strv(strings.data(), strings.size());
}

}  // namespace

std::string extension_directory = EXTENSION_DIRECTORY;

std::string page_uri(const std::string& html) {
    static int pages = 0;
    const std::string path =
        std::string(g_get_home_dir()) + "/page" + std::to_string(++pages) + ".html";
    std::ofstream(path) << "<!doctype html><meta charset=utf-8>" << html;
    return "file://" + path;
}

StoreView::StoreView(const std::string& install_root, const std::string& resources)
    : StoreView(strings_variant(install_root, resources)) {}

StoreView::StoreView(GVariant* user_data)
    : user_data_(user_data == nullptr ? nullptr : g_variant_ref_sink(user_data)) {
    WebKitWebContext* context = webkit_web_context_new_ephemeral();
    g_signal_connect(context, "initialize-web-extensions",
                     G_CALLBACK(+[](WebKitWebContext* starting, StoreView* self) {
                         webkit_web_context_set_web_extensions_directory(
                             starting, extension_directory.c_str());
                         if (self->user_data_ == nullptr) return;
                         webkit_web_context_set_web_extensions_initialization_user_data(
                             starting, self->user_data_);
                     }),
                     this);
    view_ = WEBKIT_WEB_VIEW(webkit_web_view_new_with_context(context));
    g_object_unref(context);
    show();
}

StoreView::StoreView(RelatedTo opener)
    : view_(WEBKIT_WEB_VIEW(webkit_web_view_new_with_related_view(opener.view))) {
    show();
}

void StoreView::show() {
    g_signal_connect(view_, "load-changed",
                     G_CALLBACK(+[](WebKitWebView*, WebKitLoadEvent event, StoreView* self) {
                         if (event == WEBKIT_LOAD_FINISHED) self->loaded_ = true;
                     }),
                     this);
    g_signal_connect(view_, "web-process-terminated",
                     G_CALLBACK(+[](WebKitWebView*, WebKitWebProcessTerminationReason,
                                    StoreView* self) { self->process_has_gone_ = true; }),
                     this);
    window_ = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    gtk_container_add(GTK_CONTAINER(window_), GTK_WIDGET(view_));
    gtk_widget_show_all(window_);
}

StoreView::~StoreView() {
    gtk_widget_destroy(window_);
    if (user_data_ != nullptr) g_variant_unref(user_data_);
}

void StoreView::wait_for_load() {
    run_main_loop_until([this] { return loaded_ || process_has_gone_; });
}

void StoreView::load(const std::string& html) { load_uri(page_uri(html)); }

void StoreView::load_uri(const std::string& uri) {
    loaded_ = false;
    webkit_web_view_load_uri(view_, uri.c_str());
    wait_for_load();
}

void StoreView::reload() {
    loaded_ = false;
    webkit_web_view_reload(view_);
    wait_for_load();
}

void StoreView::go_back() {
    loaded_ = false;
    webkit_web_view_go_back(view_);
    wait_for_load();
}

std::string StoreView::evaluate(const std::string& script) {
    return testing::evaluate(view_, script, [this] { return process_has_gone_; });
}

bool StoreView::wait_for(const std::string& script) {
    return run_main_loop_until([&] { return process_has_gone_ || evaluate(script) == "true"; }) &&
           !process_has_gone_;
}

}  // namespace kestrel::testing
