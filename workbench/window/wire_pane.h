#pragma once

#include <gtk/gtk.h>

#include "workbench/desktop/glib_handles.h"
#include "workbench/window/message_details.h"
#include "workbench/window/message_list.h"

namespace kestrel {

// The message list of a log, and the details of the selected message below it.
class WirePane {
  public:
    // GTK must be initialised. The log must outlive the pane.
    explicit WirePane(MessageLog& log);
    WirePane(const WirePane&) = delete;
    WirePane& operator=(const WirePane&) = delete;

    // To be added to a window, which must outlive the pane.
    GtkWidget* widget() const { return root_.get(); }

    MessageList& list() { return list_; }

  private:
    ObjectHandle<GtkWidget> root_;
    MessageDetails details_;
    MessageList list_;
};

}  // namespace kestrel
