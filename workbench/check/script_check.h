// Runs a script in the page and collects what it expects.
//
// The script is the body of an async function with the parameter `workbench`:
// workbench.expect(held, text) tells whether something is as it should be, and
// await workbench.until(condition, text, milliseconds = 5000) gives the condition, a function, that
// time to become true. The check is over when the script returns or throws; to throw is a failure.
#pragma once

#include "workbench/check/page_check.h"

namespace kestrel {

class ScriptCheck final : public PageCheck {
  public:
    // `source` must have passed find_syntax_error.
    explicit ScriptCheck(std::string source) : source_(std::move(source)) {}

    // "" for a script that can be run; else what is wrong, and in which line.
    static std::string find_syntax_error(const std::string& source);

    std::string on_page_shown() override;
    std::string on_command(const Command& command, const Request& request) override;
    bool is_over() const override { return is_over_; }
    std::vector<std::string> failures() const override;
    std::string success() const override;

  private:
    std::string source_;
    bool has_begun_ = false;
    bool is_over_ = false;
    int held_ = 0;
    std::vector<std::string> failures_;
};

}  // namespace kestrel
