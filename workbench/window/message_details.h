#pragma once

#include <gtk/gtk.h>

#include "workbench/desktop/glib_handles.h"
#include "workbench/wire/message_log.h"

namespace kestrel {

// Shows all details of one message as selectable text.
class MessageDetails {
  public:
    // GTK must be initialised.
    MessageDetails();
    ~MessageDetails();
    MessageDetails(const MessageDetails&) = delete;
    MessageDetails& operator=(const MessageDetails&) = delete;

    // To be added to a window, which must outlive this object. The text view has the widget name
    // "details".
    GtkWidget* widget() const { return root_.get(); }

    void show(const LoggedMessage& message);

  private:
    ObjectHandle<GtkWidget> root_;
    GtkTextView* text_;
};

}  // namespace kestrel
