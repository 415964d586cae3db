// Dialogs, menus and notices that the workbench shows on behalf of the page.
#pragma once

#include <functional>
#include <span>
#include <string>

#include "workbench/desktop/account.h"

namespace kestrel {

struct Question {
    std::string text;     // one sentence
    std::string details;  // from the page, shown unchanged
    std::string consent;  // label of the button that agrees
};

struct ErrorReport {
    std::string title;
    std::string details;
    std::string text;
    std::string button;  // "" for the default label
};

// In CSS pixels, relative to the upper left corner of the view.
struct Area {
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;
};

// Calls do not block. Each callback is called once, from the main loop, but not after this object
// has been destroyed.
class UserInterface {
  public:
    virtual ~UserInterface() = default;

    // Asks the user. Closing the question counts as no.
    virtual void ask(const Question& question, std::function<void(bool agrees)> done) = 0;

    // Shows an error. `is_pressed` is false if the report was closed without pressing the button.
    virtual void report_error(const ErrorReport& report,
                              std::function<void(bool is_pressed)> done) = 0;

    virtual void show_accounts(std::span<const Account> accounts) = 0;
    virtual void show_settings_menu(const Area& area) = 0;

    // Shows a line of text from the page or about its request.
    virtual void show_notice(const std::string& text) = 0;

    // Loads the page that the workbench was started with.
    virtual void open_default_store() = 0;
};

}  // namespace kestrel
