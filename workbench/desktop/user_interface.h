// What the workbench shows its user, and asks, on behalf of the page.
#pragma once

#include <functional>
#include <span>
#include <string>

#include "workbench/desktop/account.h"

namespace kestrel {

struct Question {
    std::string text;     // one sentence
    std::string details;  // from the page, shown as it is
    std::string consent;  // what the button says that agrees
};

struct ErrorReport {
    std::string title;
    std::string details;
    std::string text;
    std::string button;  // "" for the usual one
};

// In the page's pixels, from the view's upper left corner.
struct Area {
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;
};

// The user's side. All calls return at once; each callback is called once, from the main loop, but
// not after the desktop has been destroyed.
class UserInterface {
  public:
    virtual ~UserInterface() = default;

    // Whether the user agrees. Closing the question means no.
    virtual void ask(const Question& question, std::function<void(bool agrees)> done) = 0;

    // Whether the user pressed the button; closing the report means that none was pressed.
    virtual void report_error(const ErrorReport& report,
                              std::function<void(bool is_pressed)> done) = 0;

    virtual void show_accounts(std::span<const Account> accounts) = 0;
    virtual void show_settings_menu(const Area& area) = 0;

    // Shows a line that the page wants its user to see, or that tells what became of its wish.
    virtual void show_notice(const std::string& text) = 0;

    // Loads the page that the workbench was started with.
    virtual void open_default_store() = 0;
};

}  // namespace kestrel
