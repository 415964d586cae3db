#pragma once

#include <functional>
#include <utility>
#include <vector>

#include "workbench/desktop/user_interface.h"

namespace kestrel::testing {

// Answers everything with `agrees`, immediately or on release().
class FakeUserInterface final : public UserInterface {
  public:
    void ask(const Question& question, std::function<void(bool)> done) override {
        questions.push_back(question);
        answer(std::move(done));
    }
    void report_error(const ErrorReport& report, std::function<void(bool)> done) override {
        reports.push_back(report);
        answer(std::move(done));
    }
    void show_accounts(std::span<const Account> accounts) override {
        for (const Account& account : accounts) shown.push_back(account.id);
    }
    void show_settings_menu(const Area& area) override { menu = area; }
    void show_notice(const std::string& text) override { shown.push_back(text); }
    void open_default_store() override { ++default_stores; }

    void release() {
        for (const auto& done : std::exchange(delayed_, {})) done(agrees);
    }

    bool agrees = true;
    bool delays_answers = false;
    std::vector<Question> questions;
    std::vector<ErrorReport> reports;
    std::vector<std::string> shown;
    Area menu;
    int default_stores = 0;

  private:
    void answer(std::function<void(bool)> done) {
        delayed_.push_back(std::move(done));
        if (!delays_answers) release();
    }

    std::vector<std::function<void(bool)>> delayed_;
};

}  // namespace kestrel::testing
