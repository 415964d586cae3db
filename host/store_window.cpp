#include "host/store_window.h"

#include <array>
#include <memory>
#include <string_view>
#include <utility>

namespace kestrel {
namespace {

constexpr int kWidth = 1'280;
constexpr int kHeight = 860;
constexpr const char* kEmptyPage = "about:blank";

struct ObjectUnref {
    void operator()(void* object) const { g_object_unref(object); }
};

WebKitWebView* make_view(const StoreWindow::Settings& settings) {
    const std::unique_ptr<WebKitWebContext, ObjectUnref> context(
        webkit_web_context_new_ephemeral());
    const std::array<const char*, 2> user_data = {settings.install_root.c_str(),
                                                  settings.resources.c_str()};
    webkit_web_context_set_web_extensions_directory(context.get(),
                                                    settings.extension_directory.c_str());
    webkit_web_context_set_web_extensions_initialization_user_data(
        context.get(), g_variant_new_strv(user_data.data(), user_data.size()));

    auto* view = WEBKIT_WEB_VIEW(webkit_web_view_new_with_context(context.get()));
    WebKitSettings* view_settings = webkit_web_view_get_settings(view);
    webkit_settings_set_enable_developer_extras(view_settings, TRUE);
    webkit_settings_set_enable_write_console_messages_to_stdout(view_settings, TRUE);
    // A store page needs none, and displays without any are common where tests run.
    webkit_settings_set_hardware_acceleration_policy(view_settings,
                                                     WEBKIT_HARDWARE_ACCELERATION_POLICY_NEVER);
    return view;
}

GtkWidget* make_status_line() {
    GtkWidget* label = gtk_label_new("");
    gtk_label_set_xalign(GTK_LABEL(label), 0);
    gtk_label_set_ellipsize(GTK_LABEL(label), PANGO_ELLIPSIZE_END);
    gtk_widget_set_margin_start(label, 8);
    gtk_widget_set_margin_end(label, 8);
    gtk_style_context_add_class(gtk_widget_get_style_context(label), "monospace");
    return label;
}

const char* termination_text(WebKitWebProcessTerminationReason reason) {
    switch (reason) {
        case WEBKIT_WEB_PROCESS_EXCEEDED_MEMORY_LIMIT:
            return "the web process used up its memory";
        case WEBKIT_WEB_PROCESS_TERMINATED_BY_API:
            return "the web process was ended";
        default:
            return "the web process has gone";
    }
}

}  // namespace

StoreWindow::StoreWindow(const Settings& settings, Events events)
    : events_(std::move(events)),
      window_(gtk_window_new(GTK_WINDOW_TOPLEVEL)),
      view_(make_view(settings)),
      status_(make_status_line()) {
    GtkWidget* header = gtk_header_bar_new();
    gtk_header_bar_set_show_close_button(GTK_HEADER_BAR(header), TRUE);
    gtk_header_bar_set_title(GTK_HEADER_BAR(header), "Kestrel host");
    g_object_bind_property(view_, "title", header, "subtitle", G_BINDING_DEFAULT);
    GtkWidget* reload =
        gtk_button_new_from_icon_name("view-refresh-symbolic", GTK_ICON_SIZE_BUTTON);
    gtk_widget_set_tooltip_text(reload, "Load the store page again");
    g_signal_connect_swapped(reload, "clicked",
                             G_CALLBACK(+[](StoreWindow* self) { self->events_.reload_wanted(); }),
                             this);
    gtk_header_bar_pack_start(GTK_HEADER_BAR(header), reload);

    GtkWidget* box = gtk_box_new(GTK_ORIENTATION_VERTICAL, 2);
    gtk_box_pack_start(GTK_BOX(box), GTK_WIDGET(view_), TRUE, TRUE, 0);
    gtk_box_pack_start(GTK_BOX(box), status_, FALSE, FALSE, 2);
    gtk_container_add(GTK_CONTAINER(window_), box);
    gtk_window_set_titlebar(GTK_WINDOW(window_), header);
    gtk_window_set_default_size(GTK_WINDOW(window_), kWidth, kHeight);
    connect_signals();
    gtk_widget_show_all(window_);
}

StoreWindow::~StoreWindow() {
    g_signal_handlers_disconnect_by_data(view_, this);
    g_signal_handlers_disconnect_by_data(window_, this);
    gtk_widget_destroy(window_);
}

void StoreWindow::connect_signals() {
    g_signal_connect(view_, "load-changed",
                     G_CALLBACK(+[](WebKitWebView*, WebKitLoadEvent event, StoreWindow* self) {
                         self->on_load_changed(event);
                     }),
                     this);
    g_signal_connect(view_, "load-failed",
                     G_CALLBACK(+[](WebKitWebView*, WebKitLoadEvent, const char* uri, GError* error,
                                    StoreWindow* self) -> gboolean {
                         self->events_.failed(std::string(uri) + ": " + error->message);
                         return FALSE;
                     }),
                     this);
    g_signal_connect(
        view_, "web-process-terminated",
        G_CALLBACK(+[](WebKitWebView*, WebKitWebProcessTerminationReason reason,
                       StoreWindow* self) { self->events_.failed(termination_text(reason)); }),
        this);
    g_signal_connect(window_, "delete-event",
                     G_CALLBACK(+[](GtkWidget*, GdkEvent*, StoreWindow* self) -> gboolean {
                         self->events_.closed();
                         return TRUE;
                     }),
                     this);
}

void StoreWindow::on_load_changed(WebKitLoadEvent event) {
    if (event != WEBKIT_LOAD_FINISHED) return;
    const char* uri = webkit_web_view_get_uri(view_);
    const bool is_empty = uri == nullptr || std::string_view(uri) == kEmptyPage;
    (is_empty ? events_.empty_page_shown : events_.page_shown)();
}

void StoreWindow::show_empty_page() { load(kEmptyPage); }

void StoreWindow::load(const std::string& uri) { webkit_web_view_load_uri(view_, uri.c_str()); }

void StoreWindow::show_status(const std::string& text) {
    gtk_label_set_text(GTK_LABEL(status_), text.c_str());
}

void StoreWindow::take_picture(const std::string& path, std::function<void(bool)> done) {
    struct Picture {
        std::string path;
        std::function<void(bool)> done;
    };
    webkit_web_view_get_snapshot(
        view_, WEBKIT_SNAPSHOT_REGION_VISIBLE, WEBKIT_SNAPSHOT_OPTIONS_NONE, nullptr,
        [](GObject* view, GAsyncResult* result, void* data) {
            const std::unique_ptr<Picture> picture(static_cast<Picture*>(data));
            const std::unique_ptr<cairo_surface_t, decltype(&cairo_surface_destroy)> surface(
                webkit_web_view_get_snapshot_finish(WEBKIT_WEB_VIEW(view), result, nullptr),
                cairo_surface_destroy);
            picture->done(surface &&
                          cairo_surface_write_to_png(surface.get(), picture->path.c_str()) ==
                              CAIRO_STATUS_SUCCESS);
        },
        new Picture{path, std::move(done)});
}

void StoreWindow::close() {
    g_signal_handlers_disconnect_by_data(view_, this);
    gtk_widget_hide(window_);
    webkit_web_view_terminate_web_process(view_);
}

}  // namespace kestrel
