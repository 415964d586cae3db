// A menu to choose one of the locales for which the client has a catalogue.
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
        std::string current;  // "" is the user's own; need not be in `locales`
    };
    using OnChosen = std::function<void(const std::string& locale)>;  // "" for the user's own

    // GTK must be initialised. `on_chosen` is called when the choice changes.
    LocaleMenu(const Choices& choices, OnChosen on_chosen);
    ~LocaleMenu();
    LocaleMenu(const LocaleMenu&) = delete;
    LocaleMenu& operator=(const LocaleMenu&) = delete;

    // A button for a window's header bar; the window must outlive the menu. Insensitive without
    // catalogues. The popover has a radio button for each locale with the widget name "locale
    // NAME", and "locale " for the user's own.
    GtkWidget* widget() const { return button_.get(); }

  private:
    GtkWidget* make_choices();

    Choices choices_;
    OnChosen on_chosen_;
    ObjectHandle<GtkWidget> button_;
};

}  // namespace kestrel
