#pragma once

#include <string>
#include <vector>

#include "workbench/answers/commands.h"
#include "workbench/answers/request.h"

namespace kestrel {

// Observes a page and reports failures. on_page_shown and on_command may return a script, which
// is run in the page.
class PageCheck {
  public:
    virtual ~PageCheck() = default;

    // The page has loaded and the host-ready script was sent. Called again after each reload.
    virtual std::string on_page_shown() { return ""; }

    virtual std::string on_command(const Command& command, const Request& request) = 0;

    virtual void on_answer_sent() {}
    virtual void on_answer_confirmed() {}

    // The check has finished.
    virtual bool is_over() const = 0;

    // One line per failure; empty on success.
    virtual std::vector<std::string> failures() const = 0;

    // The line that reports success.
    virtual std::string success() const = 0;
};

}  // namespace kestrel
