#pragma once

#include "workbench/desktop/user_interface.h"

namespace kestrel {

// Without a user: every question gets the same answer and every error report is closed with its
// button, both before the call returns. All that would be shown goes to a listener.
class HeadlessUserInterface final : public UserInterface {
  public:
    struct Events {
        std::function<void(const std::string& line)> shown;
        std::function<void()> open_default_store;
    };

    HeadlessUserInterface(bool agrees, Events events)
        : agrees_(agrees), events_(std::move(events)) {}

    void ask(const Question& question, std::function<void(bool agrees)> done) override;
    void report_error(const ErrorReport& report,
                      std::function<void(bool is_pressed)> done) override;
    void show_accounts(std::span<const Account> accounts) override;
    void show_settings_menu(const Area& area) override;
    void show_notice(const std::string& text) override;
    void open_default_store() override;

  private:
    bool agrees_;
    Events events_;
};

}  // namespace kestrel
