#include "workbench/window/trace_window.h"

#include <utility>

namespace kestrel {
namespace {

constexpr int kTraceWidth = 900;
constexpr int kTraceHeight = 700;

}  // namespace

TraceWindow::TraceWindow(const std::string& path, GtkWindow* parent)
    : file_(path), window_(gtk_window_new(GTK_WINDOW_TOPLEVEL)), pane_(log_) {
    const GlibText name(g_filename_display_name(path.c_str()));
    gtk_window_set_title(GTK_WINDOW(window_), name.get());
    gtk_window_set_transient_for(GTK_WINDOW(window_), parent);
    gtk_window_set_default_size(GTK_WINDOW(window_), kTraceWidth, kTraceHeight);
    gtk_container_add(GTK_CONTAINER(window_), pane_.widget());
    g_signal_connect(window_, "delete-event",
                     G_CALLBACK(+[](GtkWidget*, GdkEvent*, TraceWindow* self) -> gboolean {
                         self->close();
                         return TRUE;
                     }),
                     this);
    gtk_widget_show_all(window_);
    reading_ = EventSource::when_idle([this] {
        const auto add = [this](MessageRecord record) { log_.add(std::move(record)); };
        if (!file_.read_piece(add)) reading_.remove();
    });
}

TraceWindow::~TraceWindow() {
    gtk_container_remove(GTK_CONTAINER(window_), pane_.widget());
    gtk_widget_destroy(window_);
}

void TraceWindow::close() {
    is_closed_ = true;
    reading_.remove();
    log_.clear();
    gtk_widget_hide(window_);
}

}  // namespace kestrel
