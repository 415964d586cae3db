#include "workbench/window/page_view.h"

#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string_view>
#include <utility>

#include "workbench/desktop/glib_handles.h"

namespace kestrel {
namespace {

constexpr const char* kEmptyPage = "about:blank";

// The extension's trace file, or "". It is created here, as only existing files can be added to the
// sandbox.
std::string trace_file() {
    const char* wanted = std::getenv("KESTREL_TRACE");
    if (wanted == nullptr || !std::filesystem::path(wanted).is_absolute()) return "";
    return std::ofstream(wanted, std::ios::app) ? wanted : "";
}

// Adds what the extension needs to the sandbox: its library, the catalogues, and the client's
// directory with the socket, the settings and logs.
void open_sandbox(WebKitWebContext* context, const PageView::Settings& settings) {
    webkit_web_context_add_path_to_sandbox(context, settings.extension_directory.c_str(), TRUE);
    const std::string catalogues = settings.install_root + "/nls";
    if (std::filesystem::is_directory(catalogues)) {
        webkit_web_context_add_path_to_sandbox(context, catalogues.c_str(), TRUE);
    }
    webkit_web_context_add_path_to_sandbox(context, (settings.home + "/.QUOClient").c_str(), FALSE);
    const std::string trace = trace_file();
    if (!trace.empty()) webkit_web_context_add_path_to_sandbox(context, trace.c_str(), FALSE);
    webkit_web_context_set_sandbox_enabled(context, TRUE);
}

WebKitWebView* make_view(const PageView::Settings& settings) {
    const ObjectHandle<WebKitWebContext> context(webkit_web_context_new_ephemeral());
    const std::array<const char*, 2> user_data = {settings.install_root.c_str(),
                                                  settings.resources.c_str()};
    if (settings.has_sandbox) open_sandbox(context.get(), settings);
    webkit_web_context_set_web_extensions_directory(context.get(),
                                                    settings.extension_directory.c_str());
    webkit_web_context_set_web_extensions_initialization_user_data(
        context.get(), g_variant_new_strv(user_data.data(), user_data.size()));

    auto* view = WEBKIT_WEB_VIEW(webkit_web_view_new_with_context(context.get()));
    WebKitSettings* view_settings = webkit_web_view_get_settings(view);
    webkit_settings_set_enable_developer_extras(view_settings, TRUE);
    webkit_settings_set_enable_write_console_messages_to_stdout(view_settings, TRUE);
    // Store pages do not need it, and test displays often lack it.
    webkit_settings_set_hardware_acceleration_policy(view_settings,
                                                     WEBKIT_HARDWARE_ACCELERATION_POLICY_NEVER);
    return view;
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

PageView::PageView(const Settings& settings, Events events)
    : events_(std::move(events)), view_(make_view(settings)) {
    g_object_ref_sink(view_);
    connect_signals();
}

PageView::~PageView() {
    g_signal_handlers_disconnect_by_data(view_, this);
    gtk_widget_destroy(widget());
    g_object_unref(view_);
}

void PageView::connect_signals() {
    g_signal_connect(view_, "load-changed",
                     G_CALLBACK(+[](WebKitWebView*, WebKitLoadEvent event, PageView* self) {
                         self->on_load_changed(event);
                     }),
                     this);
    g_signal_connect(view_, "load-failed",
                     G_CALLBACK(+[](WebKitWebView*, WebKitLoadEvent, const char* uri, GError* error,
                                    PageView* self) -> gboolean {
                         self->events_.failed(std::string(uri) + ": " + error->message);
                         return FALSE;
                     }),
                     this);
    g_signal_connect(
        view_, "web-process-terminated",
        G_CALLBACK(+[](WebKitWebView*, WebKitWebProcessTerminationReason reason, PageView* self) {
            self->events_.failed(termination_text(reason));
        }),
        this);
}

void PageView::on_load_changed(WebKitLoadEvent event) {
    if (event != WEBKIT_LOAD_FINISHED) return;
    const char* uri = webkit_web_view_get_uri(view_);
    const bool is_empty = uri == nullptr || std::string_view(uri) == kEmptyPage;
    (is_empty ? events_.empty_page_shown : events_.page_shown)();
}

void PageView::show_empty_page() { load(kEmptyPage); }

void PageView::load(const std::string& uri) { webkit_web_view_load_uri(view_, uri.c_str()); }

bool PageView::shows(const std::string& uri) const {
    const char* shown = webkit_web_view_get_uri(view_);
    return shown != nullptr && uri == shown;
}

void PageView::show_inspector() { webkit_web_inspector_show(webkit_web_view_get_inspector(view_)); }

void PageView::take_picture(const std::string& path, std::function<void(bool)> done) {
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

void PageView::close() {
    g_signal_handlers_disconnect_by_data(view_, this);
    webkit_web_view_terminate_web_process(view_);
}

}  // namespace kestrel
