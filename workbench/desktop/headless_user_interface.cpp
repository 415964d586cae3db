#include "workbench/desktop/headless_user_interface.h"

namespace kestrel {

void HeadlessUserInterface::ask(const Question& question, std::function<void(bool agrees)> done) {
    events_.shown("asked: " + question.text + " " + question.details +
                  (agrees_ ? " (yes)" : " (no)"));
    done(agrees_);
}

void HeadlessUserInterface::report_error(const ErrorReport& report,
                                         std::function<void(bool is_pressed)> done) {
    events_.shown("error: " + report.text);
    done(true);
}

void HeadlessUserInterface::show_accounts(std::span<const Account> accounts) {
    for (const Account& account : accounts) events_.shown("account: " + account.name);
}

void HeadlessUserInterface::show_settings_menu(const Area& area) {
    events_.shown("settings menu at " + std::to_string(area.left) + ", " +
                  std::to_string(area.top) + ", " + std::to_string(area.width) + " by " +
                  std::to_string(area.height));
}

void HeadlessUserInterface::show_notice(const std::string& text) { events_.shown(text); }

void HeadlessUserInterface::open_default_store() { events_.open_default_store(); }

}  // namespace kestrel
