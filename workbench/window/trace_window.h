#pragma once

#include <gtk/gtk.h>

#include <string>

#include "workbench/window/wire_pane.h"
#include "workbench/wire/event_source.h"
#include "workbench/wire/message_log.h"
#include "workbench/wire/trace_file.h"

namespace kestrel {

// A window that shows a trace file, which is read when the main loop is idle.
class TraceWindow {
  public:
    // GTK must be initialised. Throws what TraceFile throws.
    TraceWindow(const std::string& path, GtkWindow* parent);
    ~TraceWindow();
    TraceWindow(const TraceWindow&) = delete;
    TraceWindow& operator=(const TraceWindow&) = delete;

    GtkWidget* widget() const { return window_; }
    WirePane& pane() { return pane_; }

    // After closing, reading stops.
    bool is_closed() const { return is_closed_; }

  private:
    void close();

    TraceFile file_;
    MessageLog log_{{.rows = 200'000, .bytes = std::size_t{256} << 20}};
    GtkWidget* window_;
    WirePane pane_;
    EventSource reading_;
    bool is_closed_ = false;
};

}  // namespace kestrel
