// The ways in which the host can misbehave, to choose from: one at a time, until the host is to
// behave again.
#pragma once

#include <gtk/gtk.h>

#include <functional>

#include "workbench/desktop/glib_handles.h"
#include "workbench/wire/misbehavior.h"

namespace kestrel {

class BadHostMenu {
  public:
    struct Events {
        std::function<void(Misbehavior kind)> chosen;   // for answers from now on
        std::function<void(Misbehavior kind)> at_once;  // without waiting for a request
    };

    // GTK must be initialised.
    explicit BadHostMenu(Events events);
    ~BadHostMenu();
    BadHostMenu(const BadHostMenu&) = delete;
    BadHostMenu& operator=(const BadHostMenu&) = delete;

    // A button for a window's header bar, which must outlive the menu. It shows what is chosen
    // unless the host behaves. In its popover each way is a radio button named as its row of
    // kMisbehaviors, and those that need no request have a button "Now", named so with " now"
    // behind.
    GtkWidget* widget() const { return button_.get(); }

  private:
    GtkWidget* make_choices();
    void choose(const MisbehaviorRow& row);

    Events events_;
    ObjectHandle<GtkWidget> button_;
    GtkWidget* label_ = nullptr;
};

}  // namespace kestrel
