// A menu to choose one way in which the host misbehaves.
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

    // A button for a window's header bar; the window must outlive the menu. Its label shows the
    // chosen misbehaviour. The popover has a radio button for each row of kMisbehaviors, with the
    // row's name as its widget name, and for those that need no request a button "Now", whose
    // widget name is the row's name and " now".
    GtkWidget* widget() const { return button_.get(); }

  private:
    GtkWidget* make_choices();
    void choose(const MisbehaviorRow& row);

    Events events_;
    ObjectHandle<GtkWidget> button_;
    GtkWidget* label_ = nullptr;
};

}  // namespace kestrel
