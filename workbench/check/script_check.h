// Runs a script in the page and collects its expectations.
//
// The script is the body of an async function with the parameter `workbench`:
// workbench.expect(held, text) reports whether an expectation holds, and
// await workbench.until(condition, text, milliseconds = 5000) waits for the function `condition` to
// return a true value. The check is over when the script returns or throws; throwing is a failure.
#pragma once

#include "workbench/check/page_check.h"

namespace kestrel {

class ScriptCheck final : public PageCheck {
  public:
    // `source` must have no syntax error.
    explicit ScriptCheck(std::string source) : source_(std::move(source)) {}

    // The syntax error with its line, or "".
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
