// Where a person sends what a host can send: a script, an answer, a page with its resources.
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
    // Called with the process to send to, or 0 for all, and what to send, never null.
    using OnSend = std::function<void(int pid, Frame frame)>;

    // GTK must be initialised.
    explicit SendPanel(OnSend on_send);
    ~SendPanel();
    SendPanel(const SendPanel&) = delete;
    SendPanel& operator=(const SendPanel&) = delete;

    // To be put into a window, which must outlive the panel. Its parts are named "process", "send",
    // "problem", "kinds", "script", "callback", "arguments", "url" and "resources".
    GtkWidget* widget() const { return root_.get(); }

    // The processes that can be chosen; all of them is chosen if the chosen one has gone.
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
