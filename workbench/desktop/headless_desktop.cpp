#include "workbench/desktop/headless_desktop.h"

namespace kestrel {

void HeadlessDesktop::ask(const Question& question, std::function<void(bool agrees)> done) {
    events_.shown("asked: " + question.text + " " + question.details +
                  (agrees_ ? " (yes)" : " (no)"));
    done(agrees_);
}

void HeadlessDesktop::report_error(const ErrorReport& report,
                                   std::function<void(bool is_pressed)> done) {
    events_.shown("error: " + report.text);
    done(true);
}

void HeadlessDesktop::show_accounts(std::span<const Account> accounts) {
    for (const Account& account : accounts) events_.shown("account: " + account.name);
}

void HeadlessDesktop::show_settings_menu(const Area& area) {
    events_.shown("settings menu at " + std::to_string(area.left) + ", " +
                  std::to_string(area.top) + ", " + std::to_string(area.width) + " by " +
                  std::to_string(area.height));
}

void HeadlessDesktop::show_notice(const std::string& text) { events_.shown(text); }

void HeadlessDesktop::open_default_store() { events_.open_default_store(); }

}  // namespace kestrel
