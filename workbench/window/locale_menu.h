// The locales for which the client has a catalogue, to choose from.
#pragma once

#include <gtk/gtk.h>

#include <functional>
#include <string>
#include <vector>

#include "workbench/desktop/glib_handles.h"

namespace kestrel {

class LocaleMenu {
  public:
    struct Choices {
        std::vector<std::string> locales;
        std::string current;  // "" is the user's own; may be none of them
    };
    using OnChosen = std::function<void(const std::string& locale)>;  // "" for the user's own

    // GTK must be initialised. `on_chosen` is called when another than the current one is chosen.
    LocaleMenu(const Choices& choices, OnChosen on_chosen);
    ~LocaleMenu();
    LocaleMenu(const LocaleMenu&) = delete;
    LocaleMenu& operator=(const LocaleMenu&) = delete;

    // A button for a window's header bar, which must outlive the menu; insensitive without any
    // catalogue. In its popover each locale is a radio button named "locale " and its name, the
    // user's own "locale ".
    GtkWidget* widget() const { return button_.get(); }

  private:
    GtkWidget* make_choices();

    Choices choices_;
    OnChosen on_chosen_;
    ObjectHandle<GtkWidget> button_;
};

}  // namespace kestrel
