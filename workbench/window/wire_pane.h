#pragma once

#include <gtk/gtk.h>

#include "workbench/desktop/glib_handles.h"
#include "workbench/window/message_details.h"
#include "workbench/window/message_list.h"

namespace kestrel {

// The messages of a log, and below them all of the one that is selected.
class WirePane {
  public:
    // GTK must be initialised. The log must outlive the pane, which listens to it.
    explicit WirePane(MessageLog& log);
    ~WirePane();
    WirePane(const WirePane&) = delete;
    WirePane& operator=(const WirePane&) = delete;

    // To be put into a window, which must outlive the pane.
    GtkWidget* widget() const { return root_.get(); }

    MessageList& list() { return list_; }

  private:
    ObjectHandle<GtkWidget> root_;
    MessageDetails details_;
    MessageList list_;
};

}  // namespace kestrel
