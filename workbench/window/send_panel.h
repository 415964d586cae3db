// Composes and sends a message to the page: a script, an answer, or a page with its resources.
#pragma once

#include <gtk/gtk.h>

#include <functional>
#include <span>

#include "ipc/frame.h"
#include "workbench/desktop/glib_handles.h"
#include "workbench/wire/composed_message.h"

namespace kestrel {

class SendPanel {
  public:
    // `pid` is 0 for all processes. `frame` is not null.
    using OnSend = std::function<void(int pid, Frame frame)>;

    // GTK must be initialised.
    explicit SendPanel(OnSend on_send);
    ~SendPanel();
    SendPanel(const SendPanel&) = delete;
    SendPanel& operator=(const SendPanel&) = delete;

    // To be added to a window, which must outlive the panel. Widget names: "process", "send",
    // "problem", "kinds", "script", "callback", "arguments", "url" and "resources".
    GtkWidget* widget() const { return root_.get(); }

    // Sets the choices. If the chosen process is gone, "all processes" is chosen.
    void set_processes(std::span<const int> pids);

  private:
    GtkWidget* make_kinds();
    GtkWidget* make_bottom();
    ComposedMessage compose() const;
    void send();

    OnSend on_send_;
    ObjectHandle<GtkWidget> root_;
    GtkStack* kinds_ = nullptr;
    GtkTextView* script_ = nullptr;
    GtkEntry* callback_ = nullptr;
    GtkTextView* arguments_ = nullptr;
    GtkEntry* url_ = nullptr;
    GtkTextView* resources_ = nullptr;
    GtkComboBoxText* process_ = nullptr;
    GtkWidget* problem_ = nullptr;
};

}  // namespace kestrel
